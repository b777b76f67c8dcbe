// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/AccountSettings.h"

#include "Account/Account.h"
#include "Catalog/PreferenceChanges.h"
#include "Catalog/WorkspaceConversions.h"
#include "Client/OrvaneClient.h"

namespace orvane {

namespace {

Task<CallResult<void>> saveWorkspace(Account *account, WorkspaceSettingsResponse settings)
{
    const auto kept = co_await account->client().updateWorkspaceSettings(account->tracker().workspace().id,
                                                                         workspaceSettingsRequest(settings));
    if (!kept)
        co_return failure(kept.error());
    // Its name is part of the profile too.
    if (const auto known = co_await account->refreshMe(); !known)
        co_return failure(known.error());
    co_return co_await account->tracker().refresh(Topic::settings);
}

} // namespace

AccountSettings AccountSettings::of(const Account &account)
{
    const MeResponse &me = account.me();
    return {.preferences = me.preferences,
            .profile = {.email = me.email, .fullName = me.fullName, .timeZone = me.timeZone},
            .workspace = account.tracker().settings()};
}

Task<CallResult<AccountSettings>> freshSettings(Account *account)
{
    if (const auto known = co_await account->refreshMe(); !known)
        co_return failure(known.error());
    if (const auto known = co_await account->tracker().refresh(Topic::settings); !known)
        co_return failure(known.error());
    co_return AccountSettings::of(*account);
}

Task<CallResult<AccountSettings>> saveSettings(Account *account, AccountSettings before,
                                               AccountSettings after)
{
    const auto preferences = PreferenceChanges::between(before.preferences, after.preferences);
    if (!preferences.isEmpty()) {
        const auto kept = co_await account->client().updatePreferences(preferences.request());
        if (!kept)
            co_return failure(kept.error());
        MeResponse me = account->me();
        me.preferences = *kept;
        co_await account->updateMe(std::move(me));
    }
    if (after.profile != before.profile) {
        auto me = co_await account->client().updateProfile({after.profile.fullName, after.profile.timeZone});
        if (!me)
            co_return failure(me.error());
        co_await account->updateMe(std::move(*me));
    }
    if (after.workspace && after.workspace != before.workspace) {
        if (const auto kept = co_await saveWorkspace(account, *after.workspace); !kept)
            co_return failure(kept.error());
    }
    co_return AccountSettings::of(*account);
}

} // namespace orvane
