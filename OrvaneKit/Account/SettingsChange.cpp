// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/SettingsChange.h"

#include "Account/Account.h"
#include "Catalog/PreferenceChanges.h"
#include "Outbox/OutboxRules.h"

#include <QPointer>

namespace orvane {

namespace {

using Ending = UndoableChange::Ending;

UndoableChange::Outcome notSaved(const CallError &error)
{
    return {classify(error) == FailureKind::transient ? Ending::away : Ending::refused, describe(error)};
}

/// What leads from one to the other, done to settings of which other members may differ.
AccountSettings movedOn(AccountSettings settings, const AccountSettings &from, const AccountSettings &to)
{
    settings.preferences =
        PreferenceChanges::between(from.preferences, to.preferences).appliedTo(settings.preferences);
    if (from.profile.fullName != to.profile.fullName)
        settings.profile.fullName = to.profile.fullName;
    if (from.profile.timeZone != to.profile.timeZone)
        settings.profile.timeZone = to.profile.timeZone;
    if (from.workspace != to.workspace)
        settings.workspace = to.workspace;
    return settings;
}

Task<UndoableChange::Outcome> settingsMoved(QPointer<Account> account, AccountSettings from,
                                            AccountSettings to)
{
    if (!account)
        co_return UndoableChange::Outcome{Ending::away, "Nobody is signed in."};
    const auto now = co_await freshSettings(account);
    if (!now)
        co_return notSaved(now.error());
    // Doing again what was done changes nothing when all of it still stands.
    if (movedOn(*now, to, from) != *now)
        co_return UndoableChange::Outcome{Ending::changedSince,
                                          "That cannot be undone: the settings were changed since then."};
    const auto saved = co_await saveSettings(account, *now, movedOn(*now, from, to));
    co_return saved ? UndoableChange::Outcome{} : notSaved(saved.error());
}

class SettingsChange final : public UndoableChange {
public:
    SettingsChange(Account &account, AccountSettings before, AccountSettings after)
        : m_account(&account), m_before(std::move(before)), m_after(std::move(after))
    {
    }

    std::string sentence() const override
    {
        return m_before.workspace == m_after.workspace ? "Changed your settings"
                                                       : "Changed the workspace's settings";
    }
    Task<Outcome> undo() override { return settingsMoved(m_account, m_after, m_before); }
    Task<Outcome> redo() override { return settingsMoved(m_account, m_before, m_after); }

private:
    QPointer<Account> m_account;
    AccountSettings m_before;
    AccountSettings m_after;
};

} // namespace

std::shared_ptr<UndoableChange> undoableChange(Account &account, AccountSettings before,
                                               AccountSettings after)
{
    return std::make_shared<SettingsChange>(account, std::move(before), std::move(after));
}

} // namespace orvane
