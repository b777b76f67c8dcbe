// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryRules.h"

#include "Time/TextScanner.h"

#include <algorithm>

namespace orvane {

namespace {

bool saysSomething(const std::string &text)
{
    return !TextScanner::trimmed(text).empty();
}

bool isDescribed(const EntryDetails &details)
{
    return saysSomething(details.description) ||
           (!details.shares.empty() &&
            std::ranges::all_of(details.shares, saysSomething, &SplitPart::description));
}

bool isGiven(const std::optional<std::string> &id)
{
    return id && !id->empty();
}

bool hasProject(const EntryDetails &details)
{
    return details.shares.empty() ? isGiven(details.projectId)
                                  : std::ranges::all_of(details.shares, isGiven, &SplitPart::projectId);
}

bool hasTask(const EntryDetails &details)
{
    return details.shares.empty() ? isGiven(details.taskId)
                                  : std::ranges::all_of(details.shares, isGiven, &SplitPart::taskId);
}

} // namespace

std::vector<RequiredDetail> EntryRules::missing(const EntryDetails &details) const
{
    std::vector<RequiredDetail> lacking;
    if (settings.requireDescription && !isDescribed(details))
        lacking.push_back(RequiredDetail::description);
    if (settings.requireProject && !hasProject(details))
        lacking.push_back(RequiredDetail::project);
    if (settings.requireTask && !hasTask(details))
        lacking.push_back(RequiredDetail::task);
    if (settings.requireTag && details.tagIds.empty())
        lacking.push_back(RequiredDetail::tag);
    return lacking;
}

bool EntryRules::isLocked(Instant instant) const
{
    return settings.lockedBefore && instant < *settings.lockedBefore;
}

} // namespace orvane
