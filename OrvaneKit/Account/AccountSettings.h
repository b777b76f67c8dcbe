// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Task.h"

#include <optional>
#include <string>

namespace orvane {

class Account;

/// All that a user can set: their preferences, their profile, and the rules of the workspace in use. A value.
struct AccountSettings {
    struct Profile {
        std::string email; ///< is not set here
        std::string fullName;
        std::string timeZone; ///< an IANA identifier

        bool operator==(const Profile &) const = default;
    };

    PreferencesResponse preferences;
    Profile profile;
    /// None while the server has never told them.
    std::optional<WorkspaceSettingsResponse> workspace;

    bool operator==(const AccountSettings &) const = default;

    /// As they are known here. Main thread, like the account.
    static AccountSettings of(const Account &account);
};

/// The settings as the server has them now, which the account then knows too. `account` outlives the call.
/// Main thread.
Task<CallResult<AccountSettings>> freshSettings(Account *account);

/// Writes what differs to the server, of the workspace as a whole, and has the account follow. Answers the
/// settings as they are then, or why something was refused; what came before that is kept. Only
/// administrators change a workspace. `account` outlives the call. Main thread.
Task<CallResult<AccountSettings>> saveSettings(Account *account, AccountSettings before,
                                               AccountSettings after);

} // namespace orvane
