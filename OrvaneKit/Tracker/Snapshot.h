// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Json.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// What the tracker keeps of a workspace between runs, so that the next start shows the last known state
/// without the server.
struct Snapshot {
    /// The first instant of the loaded window.
    Instant weekStart;
    std::vector<TimeEntryResponse> entries;
    std::optional<TimeEntryResponse> running;
    std::optional<WorkspaceSettingsResponse> settings;
    std::vector<ProjectResponse> projects;
    std::vector<ClientResponse> clients;
    std::vector<TagResponse> tags;

    bool operator==(const Snapshot &) const = default;

    static std::string key(const std::string &workspaceId) { return "workspace:" + workspaceId; }
};

template <>
struct JsonFields<Snapshot> {
    static constexpr auto list = std::tuple{jsonField<"weekStart">(&Snapshot::weekStart),
                                            jsonField<"entries">(&Snapshot::entries),
                                            jsonField<"running">(&Snapshot::running),
                                            jsonField<"settings">(&Snapshot::settings),
                                            jsonField<"projects">(&Snapshot::projects),
                                            jsonField<"clients">(&Snapshot::clients),
                                            jsonField<"tags">(&Snapshot::tags)};
};

} // namespace orvane
