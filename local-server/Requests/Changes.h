// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// What requests change, as those are told who show it.
namespace orvane::server {

enum class ChangeTopic { timeEntries, catalog, settings, agentActivity, proposals, me };

/// The topic's name beyond this program: "time-entries".
std::string_view text(ChangeTopic topic);

struct Change {
    ChangeTopic topic = ChangeTopic::me;
    /// Where; empty for what a user has beside all workspaces.
    std::string workspaceId;
    /// Whose; empty for what everybody in the workspace sees.
    std::string userId;

    bool operator==(const Change &) const = default;
};

/// Told once what one transaction changed, after that is on the disk: on the thread that wrote it, which must
/// not be kept for long.
using ChangeObserver = std::function<void(const std::vector<Change> &)>;

} // namespace orvane::server
