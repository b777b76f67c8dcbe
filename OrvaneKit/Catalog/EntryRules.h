// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/EntryDetails.h"
#include "OrvaneAPI/Schemas.h"
#include "Support/Instant.h"

#include <vector>

namespace orvane {

/// A detail that a workspace can require of its entries.
enum class RequiredDetail { description, project, task, tag };

/// What a workspace asks of its entries and allows its members. Plain data; any thread.
///
/// The time of a split entry counts where its shares say, and its own project and task count nowhere. So a
/// split entry has a project (or a task) only when every share has one: a single share without would be time
/// that the workspace's reports cannot place, which is what requiring a project is there to prevent. Likewise
/// it is described when it has a description of its own or every share has one.
struct EntryRules {
    WorkspaceSettingsResponse settings;
    bool isAdmin = false; ///< the user's role in the workspace

    /// What the workspace requires and these details lack, in the order of RequiredDetail. A description of
    /// white space says nothing.
    std::vector<RequiredDetail> missing(const EntryDetails &details) const;

    bool mayCreateProjects() const { return isAdmin || !settings.onlyAdminsCreateProjects; }
    bool mayCreateTags() const { return isAdmin || !settings.onlyAdminsCreateTags; }

    /// Whether this lies in the time that may not be changed any more.
    bool isLocked(Instant instant) const;
};

} // namespace orvane
