// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/SyncDetails.h"

#include "AppModel/AppModel.h"
#include "Time/AppClock.h"

namespace orvane {

SyncDetails::SyncDetails(AppModel &app) : m_app(&app)
{
    connect(m_app, &AppModel::trackerChanged, this, &SyncDetails::follow);
    connect(m_app->sync(), &SyncStatus::changed, this, &SyncDetails::handlePass);
    follow();
}

void SyncDetails::follow()
{
    if (m_account != m_app->account()) {
        m_account = m_app->account();
        m_sentAt.reset();
        if (m_account) {
            connect(&m_account->outbox(), &Outbox::passEnded, this, &SyncDetails::handlePass);
            connect(&m_account->outbox(), &Outbox::pendingChanged, this, &SyncDetails::changed);
        }
    }
    Q_EMIT changed();
}

void SyncDetails::handlePass()
{
    if (m_account && m_account->isReachable() && m_account->outbox().pending().empty())
        m_sentAt = AppClock::now();
    Q_EMIT changed();
}

QString SyncDetails::place() const
{
    return m_app->placeName();
}

QString SyncDetails::address() const
{
    return m_account ? QString::fromStdString(m_account->server()) : QString();
}

QString SyncDetails::sentAt() const
{
    if (!m_sentAt || !m_account)
        return {};
    const UserTime &time = m_account->time();
    const QString clock = QString::fromStdString(time.clockLabel(*m_sentAt));
    const DayKey day = time.dayKey(*m_sentAt);
    return day == time.today()
               ? tr("All was sent at %1.").arg(clock)
               : tr("All was sent at %1 on %2.").arg(clock, QString::fromStdString(time.dayTitle(day)));
}

QString SyncDetails::words(const EntryChange &change) const
{
    const EntryRequest *request = change.request();
    const auto known = m_account->tracker().entry(change.entryId());
    const std::string description = request != nullptr ? request->details.description
                                    : known            ? known->description
                                                       : std::string();
    const QString named = description.empty() ? tr("an entry without a description")
                                              : tr("“%1”").arg(QString::fromStdString(description));
    if (std::holds_alternative<EntryChange::Create>(change.action))
        return tr("New: %1").arg(named);
    if (std::holds_alternative<EntryChange::Stop>(change.action))
        return tr("Stopped: %1").arg(named);
    if (std::holds_alternative<EntryChange::Delete>(change.action))
        return tr("Deleted: %1").arg(named);
    return tr("Changed: %1").arg(named);
}

QStringList SyncDetails::waiting() const
{
    QStringList said;
    if (!m_account)
        return said;
    for (const Outbox::Pending &row : m_account->outbox().pending()) {
        if (said.size() == mostNamed)
            break;
        said << words(row.change);
    }
    return said;
}

int SyncDetails::more() const
{
    const auto count = m_account ? static_cast<int>(m_account->outbox().pending().size()) : 0;
    return std::max(0, count - mostNamed);
}

void SyncDetails::sendNow()
{
    if (m_account && !m_isSending)
        doSend();
}

Task<> SyncDetails::doSend()
{
    const QPointer<SyncDetails> self(this);
    m_isSending = true;
    Q_EMIT changed();
    // An account that has nothing to send only learns whether the server is there.
    co_await m_account->outbox().flush();
    if (self && m_account)
        (void)co_await m_account->refreshMe();
    if (!self)
        co_return;
    m_isSending = false;
    handlePass();
}

} // namespace orvane
