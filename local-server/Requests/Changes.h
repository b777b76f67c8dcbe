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

/// What one transaction changed, and whose doing that was: nobody's in particular when the texts are empty.
struct ChangeNotice {
    std::vector<Change> changes;
    std::string byUser;
    /// The one of the user's connections to the hub that knows of it already, as far as that is true.
    std::string byConnection;
};

/// Told once for each transaction, after it is on the disk: on the thread that wrote it, which must not be
/// kept for long.
using ChangeObserver = std::function<void(const ChangeNotice &)>;

} // namespace orvane::server
