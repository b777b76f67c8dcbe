// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <optional>
#include <vector>

namespace orvane {

/// A client and its projects, as the project pickers show them; without a client, the projects that have
/// none. Plain data; any thread.
struct ProjectGroup {
    std::optional<ClientResponse> client;
    std::vector<ProjectResponse> projects;

    bool operator==(const ProjectGroup &) const = default;

    /// The groups of these projects, archived ones left out: first the one without a client, then by the
    /// client's name, and in each by the project's name, as people order names. A client that is not in the
    /// list, since someone deleted it elsewhere, counts as none. No group is empty.
    static std::vector<ProjectGroup> of(const std::vector<ProjectResponse> &projects,
                                        const std::vector<ClientResponse> &clients);
};

} // namespace orvane
