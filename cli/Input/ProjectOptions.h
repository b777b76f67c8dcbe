// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/ProjectFields.h"
#include "Support/Result.h"

#include <optional>
#include <string>

namespace orvane {

/// What the options of `projects add` and `projects edit` say, as typed; what is not named is absent, and an
/// empty text takes away what the project had.
struct ProjectOptions {
    std::optional<std::string> name;
    std::optional<std::string> client; ///< a name or an identifier
    std::optional<std::string> color;
    std::optional<std::string> rate;
    std::optional<std::string> estimate;
    std::optional<bool> isBillable;
    std::optional<bool> isPrivate;

    bool operator==(const ProjectOptions &) const = default;

    /// The fields with all that is named but the client. The error is a sentence about a text that cannot be
    /// used: wrong usage.
    Result<ProjectFields, std::string> appliedTo(ProjectFields fields) const;
};

/// Why a thing of the catalog cannot have the name that was typed for it; nothing when it can, as far as it
/// is known here.
std::optional<std::string> typedNameProblem(const std::string &name);

} // namespace orvane
