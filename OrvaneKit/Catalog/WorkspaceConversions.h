// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

namespace orvane {

/// The request that would write a workspace's settings as they are: the way to change some of them. Any
/// thread.
WorkspaceSettingsRequest workspaceSettingsRequest(const WorkspaceSettingsResponse &settings);

} // namespace orvane
