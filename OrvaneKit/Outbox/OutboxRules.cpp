// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/OutboxRules.h"

#include "Catalog/EntryConversions.h"
#include "Outbox/EntryMerge.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

bool isAlreadyDone(const EntryChange &change, const TimeEntryResponse &current)
{
    if (current.id != change.entryId())
        return false;
    if (const auto *update = std::get_if<EntryChange::Update>(&change.action))
        return saysTheSame(entryResponse(update->request, current.id, current.workspaceId), current);
    if (const auto *stop = std::get_if<EntryChange::Stop>(&change.action))
        return current.stop == stop->at;
    return false;
}

/// An update says the whole entry; a stop leaves the rest of it as it was.
bool isOursAlone(const EntryChange &change, const std::optional<TimeEntryResponse> &base,
                 const TimeEntryResponse &current)
{
    if (!std::holds_alternative<EntryChange::Stop>(change.action))
        return true;
    const auto stopped = base ? applied(change, *base) : std::nullopt;
    return stopped && saysTheSame(*stopped, current);
}

} // namespace

FailureKind classify(const CallError &error)
{
    const auto *problem = std::get_if<APIError>(&error);
    if (problem == nullptr)
        return FailureKind::transient;
    if (problem->status == 412 && problem->type == entryChangedProblemType && problem->current)
        return FailureKind::conflict;
    const bool asksForAnotherTry =
        problem->status >= 500 || problem->status == 401 || problem->status == 408 || problem->status == 429;
    return asksForAnotherTry ? FailureKind::transient : FailureKind::refusal;
}

std::chrono::milliseconds retryDelay(int failures)
{
    using std::chrono::seconds;
    static constexpr std::array delays{seconds{2}, seconds{5}, seconds{15}, seconds{30}, seconds{60}};
    const auto index =
        std::clamp<std::size_t>(static_cast<std::size_t>(std::max(failures, 1)) - 1, 0, delays.size() - 1);
    return delays[index];
}

std::optional<LostAnswer> lostFirstAnswer(const EntryChange &change,
                                          const std::optional<TimeEntryResponse> &base,
                                          const CallError &error)
{
    const auto *problem = std::get_if<APIError>(&error);
    if (problem == nullptr)
        return std::nullopt;
    if (problem->status == 404 && std::holds_alternative<EntryChange::Delete>(change.action))
        return LostAnswer{};
    if (classify(error) == FailureKind::conflict && isAlreadyDone(change, *problem->current))
        return LostAnswer{problem->current, isOursAlone(change, base, *problem->current)};
    return std::nullopt;
}

bool isAsCreated(const EntryChange::Create &create, const TimeEntryResponse &answer)
{
    return saysTheSame(entryResponse(create.request, create.id, create.workspaceId), answer);
}

} // namespace orvane
