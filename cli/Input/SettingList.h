// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/AccountSettings.h"
#include "Support/Result.h"
#include "Time/UserTime.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// One of the settings as people name, read and type it.
struct Setting {
    enum class Group { profile, preferences, workspace };

    std::string name; ///< "weekStart"
    Group group = Group::preferences;
    /// What it wants, as in "weekStart wants a weekday, such as monday".
    std::string meaning;
    /// The value as it is typed and shown; empty when there is none. The workspace's settings are known.
    std::function<std::string(const AccountSettings &, const UserTime &)> shown;
    /// Puts a typed value in; false when it is none. The workspace's settings are known.
    std::function<bool(AccountSettings &, const std::string &, const UserTime &)> take;
    /// What can be typed, for a "did you mean"; empty when that is anything.
    std::function<std::vector<std::string>()> choices;

    /// The settings with a typed value. The error says what is wanted instead.
    Result<AccountSettings, std::string> with(AccountSettings settings, const std::string &typed,
                                              const UserTime &time) const;
};

/// All of them, in the order shown.
const std::vector<Setting> &settingList();

/// The one of that name; letter case and hyphens play no part. The error says which there are.
Result<Setting, std::string> settingNamed(std::string_view typed);

} // namespace orvane
