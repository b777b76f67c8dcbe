// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/EntryConversions.h"

#include <algorithm>

namespace orvane {

namespace {

/// The members that a share has in each of its three forms.
template <class To, class From>
To sameShare(const From &share)
{
    return {.projectId = share.projectId,
            .taskId = share.taskId,
            .isBillable = share.isBillable,
            .percent = share.percent,
            .description = share.description};
}

template <class To, class From>
std::vector<To> sameShares(const std::vector<From> &shares)
{
    std::vector<To> result;
    result.reserve(shares.size());
    for (const From &share : shares)
        result.push_back(sameShare<To>(share));
    return result;
}

/// The details are members of their own in a request of ours and members of the entry in the server's forms.
template <class To, class From>
void copyDetails(To &to, const From &from)
{
    to.description = from.description;
    to.projectId = from.projectId;
    to.taskId = from.taskId;
    to.tagIds = from.tagIds;
    to.isBillable = from.isBillable;
    to.shares = sameShares<typename decltype(to.shares)::value_type>(from.shares);
}

template <class To>
To serverRequest(const EntryRequest &request)
{
    To to;
    copyDetails(to, request.details);
    to.describeParts = request.describeParts;
    to.start = request.start;
    to.stop = request.stop;
    return to;
}

} // namespace

TimeEntryRequest timeEntryRequest(const EntryRequest &request)
{
    return serverRequest<TimeEntryRequest>(request);
}

CreateTimeEntryRequest createTimeEntryRequest(const EntryRequest &request, std::string id)
{
    auto to = serverRequest<CreateTimeEntryRequest>(request);
    to.id = std::move(id);
    return to;
}

EntryDetails entryDetails(const TimeEntryResponse &entry)
{
    EntryDetails details;
    copyDetails(details, entry);
    return details;
}

EntryRequest entryRequest(const TimeEntryResponse &entry)
{
    const bool describeParts = std::ranges::any_of(
        entry.shares, [&](const TimeShareResponse &share) { return share.description != entry.description; });
    return {entryDetails(entry), entry.start, entry.stop, describeParts};
}

TimeEntryResponse entryResponse(const EntryRequest &request, std::string id, std::string workspaceId,
                                std::string version)
{
    TimeEntryResponse entry;
    copyDetails(entry, request.details);
    if (!request.describeParts) {
        for (TimeShareResponse &share : entry.shares)
            share.description = entry.description;
    }
    entry.id = std::move(id);
    entry.workspaceId = std::move(workspaceId);
    entry.start = request.start;
    entry.stop = request.stop;
    entry.version = std::move(version);
    return entry;
}

} // namespace orvane
