// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"

#include <cstdint>
#include <optional>
#include <string>

namespace orvane {

/// What a user can edit about a project. Plain data; any thread.
struct ProjectFields {
    std::string name;
    std::optional<std::string> clientId;
    std::string color;
    bool isPrivate = false;
    bool isBillable = false;
    std::optional<std::int64_t> estimateSeconds;
    std::optional<double> hourlyRate; ///< in the workspace's currency

    bool operator==(const ProjectFields &) const = default;

    static ProjectFields of(const ProjectResponse &project);
    ProjectRequest request() const;
};

} // namespace orvane
