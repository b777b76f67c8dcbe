// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/SettingsWriter.h"

#include "Account/SettingsChange.h"
#include "AppModel/AppModel.h"

namespace orvane {

SettingsWriter::SettingsWriter(AppModel &app) : m_app(&app)
{
    connect(m_app, &AppModel::trackerChanged, this, &SettingsWriter::follow);
    connect(m_app->sync(), &SyncStatus::changed, this, &SettingsWriter::changed);
    follow();
}

void SettingsWriter::follow()
{
    if (m_account != m_app->account()) {
        m_waiting.clear();
        m_problem.clear();
        m_account = m_app->account();
        if (m_account)
            connect(m_account, &Account::meChanged, this, &SettingsWriter::update);
    }
    if (Tracker *tracker = m_app->tracker()) {
        connect(tracker, &Tracker::settingsChanged, this, &SettingsWriter::update);
        connect(tracker, &Tracker::workspaceChanged, this, &SettingsWriter::update);
    }
    update();
}

void SettingsWriter::update()
{
    m_shown.reset();
    if (m_account) {
        m_shown = AccountSettings::of(*m_account);
        for (const Change &change : m_waiting)
            change(*m_shown);
    }
    Q_EMIT changed();
}

bool SettingsWriter::isAway() const
{
    return !m_account || !m_account->isReachable();
}

bool SettingsWriter::isAdmin() const
{
    return m_account && m_account->tracker().rules().isAdmin;
}

void SettingsWriter::setProblem(const QString &problem)
{
    m_problem = problem;
    Q_EMIT changed();
}

void SettingsWriter::change(Change change)
{
    if (!m_account || !m_shown)
        return;
    AccountSettings after = *m_shown;
    change(after);
    if (after == *m_shown)
        return;
    m_waiting.push_back(std::move(change));
    m_problem.clear();
    update();
    if (!m_isSending)
        send();
}

Task<> SettingsWriter::send()
{
    const QPointer<SettingsWriter> self(this);
    m_isSending = true;
    while (self && m_account && !m_waiting.empty()) {
        const QPointer<Account> account = m_account;
        const AccountSettings before = AccountSettings::of(*account);
        AccountSettings after = before;
        m_waiting.front()(after);
        const auto kept = co_await saveSettings(account, before, after);
        if (!self)
            co_return;
        if (account != m_account)
            continue;
        m_waiting.pop_front();
        if (!kept) {
            m_waiting.clear();
            m_problem = QString::fromStdString(describe(kept.error()));
        } else if (*kept != before) {
            m_app->noteChange(undoableChange(*account, before, *kept), false);
        }
        update();
    }
    if (!self)
        co_return;
    m_isSending = false;
    Q_EMIT changed();
}

} // namespace orvane
