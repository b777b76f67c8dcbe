// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"

#include <string>

namespace orvane {

/// What live sync tells: that something is otherwise at the server, not how.
struct SyncChange {
    /// "time-entries", "catalog", "settings", "agent-activity", "proposals" or "me"; others may come.
    std::string topic;
    /// Where; empty for what a user has beside all workspaces.
    std::string workspaceId;
    /// Whose; empty for what everybody in the workspace sees.
    std::string userId;

    bool operator==(const SyncChange &) const = default;
};

template <>
struct JsonFields<SyncChange> {
    static constexpr auto list =
        JsonFieldList{jsonField<"topic">(&SyncChange::topic),
                      jsonField<"workspaceId">(&SyncChange::workspaceId, JsonPresence::defaulted),
                      jsonField<"userId">(&SyncChange::userId, JsonPresence::defaulted)};
};

} // namespace orvane
