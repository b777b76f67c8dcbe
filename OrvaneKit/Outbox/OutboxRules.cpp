// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/OutboxRules.h"

#include "Catalog/EntryConversions.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

/// Whether the entry is what the update asks for, whatever its version and the order of its tags.
bool holds(TimeEntryResponse current, const EntryChange::Update &change)
{
    TimeEntryResponse wanted =
        entryResponse(change.request, current.id, current.workspaceId, current.version);
    std::ranges::sort(wanted.tagIds);
    std::ranges::sort(current.tagIds);
    return wanted == current;
}

bool isAlreadyDone(const EntryChange &change, const TimeEntryResponse &current)
{
    if (current.id != change.entryId())
        return false;
    if (const auto *update = std::get_if<EntryChange::Update>(&change.action))
        return holds(current, *update);
    if (const auto *stop = std::get_if<EntryChange::Stop>(&change.action))
        return current.stop == stop->at;
    return false;
}

} // namespace

FailureKind classify(const CallError &error)
{
    const auto *problem = std::get_if<APIError>(&error);
    if (problem == nullptr)
        return FailureKind::Transient;
    if (problem->status == 412 && problem->type == entryChangedProblemType && problem->current)
        return FailureKind::Conflict;
    const bool asksForAnotherTry =
        problem->status >= 500 || problem->status == 401 || problem->status == 408 || problem->status == 429;
    return asksForAnotherTry ? FailureKind::Transient : FailureKind::Refusal;
}

std::chrono::milliseconds retryDelay(int failures)
{
    using std::chrono::seconds;
    static constexpr std::array delays{seconds{2}, seconds{5}, seconds{15}, seconds{30}, seconds{60}};
    const auto index =
        std::clamp<std::size_t>(static_cast<std::size_t>(std::max(failures, 1)) - 1, 0, delays.size() - 1);
    return delays[index];
}

std::optional<LostAnswer> lostFirstAnswer(const EntryChange &change, const CallError &error)
{
    const auto *problem = std::get_if<APIError>(&error);
    if (problem == nullptr)
        return std::nullopt;
    if (problem->status == 404 && std::holds_alternative<EntryChange::Delete>(change.action))
        return LostAnswer{};
    if (classify(error) == FailureKind::Conflict && isAlreadyDone(change, *problem->current))
        return LostAnswer{problem->current};
    return std::nullopt;
}

} // namespace orvane
