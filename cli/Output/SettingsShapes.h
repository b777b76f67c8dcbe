// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/AccountSettings.h"

#include <string>

namespace orvane::shapes {

/// What `settings` prints for programs: `{preferences, profile, workspace}`.
std::string settingsText(const AccountSettings &settings);

} // namespace orvane::shapes
