// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/WorkspaceConversions.h"

namespace orvane {

WorkspaceSettingsRequest workspaceSettingsRequest(const WorkspaceSettingsResponse &settings)
{
    return {.name = settings.name,
            .currency = settings.currency,
            .defaultHourlyRate = settings.defaultHourlyRate,
            .onlyAdminsCreateProjects = settings.onlyAdminsCreateProjects,
            .onlyAdminsCreateTags = settings.onlyAdminsCreateTags,
            .lockedBefore = settings.lockedBefore,
            .requireDescription = settings.requireDescription,
            .requireProject = settings.requireProject,
            .requireTask = settings.requireTask,
            .requireTag = settings.requireTag};
}

} // namespace orvane
