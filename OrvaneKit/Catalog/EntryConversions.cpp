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

/// The details of a request; its shares say what the entry says unless they describe themselves. The request
/// to the server and the entry shown before its answer have them alike, so the echo changes nothing on the
/// screen.
template <class To>
void copyContents(To &to, const EntryRequest &request)
{
    copyDetails(to, request.details);
    if (!request.describeParts) {
        for (auto &share : to.shares)
            share.description = to.description;
    }
    to.start = request.start;
    to.stop = request.stop;
}

template <class To>
To serverRequest(const EntryRequest &request)
{
    To to;
    copyContents(to, request);
    to.describeParts = request.describeParts;
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
    copyContents(entry, request);
    entry.id = std::move(id);
    entry.workspaceId = std::move(workspaceId);
    entry.version = std::move(version);
    return entry;
}

std::optional<TimeEntryResponse> applied(const EntryChange &change, TimeEntryResponse entry)
{
    if (const auto *update = std::get_if<EntryChange::Update>(&change.action)) {
        TimeEntryResponse changed = entryResponse(update->request, entry.id, entry.workspaceId);
        changed.version = std::move(entry.version);
        return changed;
    }
    if (const auto *stop = std::get_if<EntryChange::Stop>(&change.action))
        entry.stop = stop->at;
    else if (std::holds_alternative<EntryChange::Delete>(change.action))
        return std::nullopt;
    return entry;
}

} // namespace orvane
