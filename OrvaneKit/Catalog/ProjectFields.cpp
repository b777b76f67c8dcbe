// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/ProjectFields.h"

namespace orvane {

namespace {

template <class To, class From>
To sameFields(const From &from)
{
    return {.name = from.name,
            .clientId = from.clientId,
            .color = from.color,
            .isPrivate = from.isPrivate,
            .isBillable = from.isBillable,
            .estimateSeconds = from.estimateSeconds,
            .hourlyRate = from.hourlyRate};
}

} // namespace

ProjectFields ProjectFields::of(const ProjectResponse &project)
{
    return sameFields<ProjectFields>(project);
}

ProjectRequest ProjectFields::request() const
{
    return sameFields<ProjectRequest>(*this);
}

} // namespace orvane
