// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/ChangeStack.h"

#include "Catalog/EntryConversions.h"
#include "Outbox/EntryMerge.h"

#include <algorithm>
#include <ranges>

namespace orvane::outbox {

namespace {

std::optional<std::string> versionOf(const TimeEntryResponse &entry)
{
    return entry.version.empty() ? std::nullopt : std::optional{entry.version};
}

/// What a queued change makes of its entry, as far as others can stand on it: the first of two stops stands,
/// so a later one is either taken for that or asks the user.
std::optional<TimeEntryResponse> outcomeAfter(const EntryChange &change, TimeEntryResponse entry)
{
    const bool isLateStop = entry.stop && std::holds_alternative<EntryChange::Stop>(change.action);
    return isLateStop ? std::optional{std::move(entry)} : applied(change, std::move(entry));
}

/// What is queued for an entry makes of it; none when that cannot be told, or after a deletion.
std::optional<TimeEntryResponse> outcomeOf(StoreSteps &steps, const ChangeRows &rows)
{
    std::optional<TimeEntryResponse> entry;
    const EntryChange &first = rows.front().change;
    if (const auto *create = std::get_if<EntryChange::Create>(&first.action)) {
        entry = entryResponse(create->request, create->id, create->workspaceId);
    } else {
        std::optional<ChangeBase> base;
        steps.read(ChangeBase::key(rows.front().seq), base);
        if (!base)
            return std::nullopt;
        entry = outcomeAfter(first, std::move(base->entry));
    }
    for (const PendingChange &row : rows | std::views::drop(1)) {
        if (entry)
            entry = outcomeAfter(row.change, std::move(*entry));
    }
    return entry;
}

/// What a change stands on once it is put on top of `head`: that, with what its user saw in the fields that
/// they changed.
TimeEntryResponse groundOf(const Submission &submission, const TimeEntryResponse &head)
{
    const TimeEntryResponse &base = *submission.base;
    const auto mine = applied(submission.change, base);
    TimeEntryResponse ground = head;
    if (mine && submission.change.request() != nullptr) {
        const EntryChange back{EntryChange::Update{entryRequest(base), base.id, base.workspaceId, {}}};
        ground = *applied(putOnTop(back, *mine, head).change, head);
    }
    ground.version = base.version;
    return ground;
}

void contest(Submission &submission)
{
    submission.change = submission.change.withVersion(unseenVersion);
}

bool isRemoval(const PendingChange &row)
{
    return std::holds_alternative<EntryChange::Delete>(row.change.action);
}

void place(Submission &submission, const TimeEntryResponse &head, const std::optional<std::string> &version)
{
    // All that is queued for an entry carries one version, so that a long queue needs no other to be
    // remembered.
    if (version)
        submission.change = submission.change.withVersion(*version);
    if (saysTheSame(*submission.base, head))
        return;
    Rebased rebased = putOnTop(submission.change, *submission.base, head);
    if (rebased.isContested)
        return contest(submission);
    submission.base = groundOf(submission, head);
    submission.change = std::move(rebased.change);
}

} // namespace

bool isLineOfOurs(const EntryHead &head, const std::optional<std::string> &version)
{
    return !version || version->empty() || *version == head.entry.version ||
           std::ranges::find(head.replaced, *version) != head.replaced.end();
}

void placeOnTop(StoreSteps &steps, Submission &submission)
{
    const std::string id = submission.change.entryId();
    ChangeRows rows;
    std::optional<EntryHead> head;
    steps.readRowsOf(id, 0, rows).read(EntryHead::key(id), head);
    const auto seen = versionOf(*submission.base);
    if (rows.empty()) {
        if (head && isLineOfOurs(*head, seen))
            place(submission, head->entry, head->entry.version);
        else if (seen && submission.server && submission.server->version == seen)
            place(submission, TimeEntryResponse(*submission.server), {});
        else if (!head && !seen)
            contest(submission); // what has become of the entry meanwhile is not known
        return;
    }
    const auto outcome = outcomeOf(steps, rows);
    if (!outcome) {
        // Made by who did not see the removal, and perhaps not what the removal's user saw.
        if (std::ranges::any_of(rows, isRemoval))
            contest(submission);
        return;
    }
    // Whatever server's version it was made against: those before it are sent first, and when that version
    // stands against them, settling their conflict decides about this change too.
    const auto carried = rows.front().change.version();
    place(submission, *outcome, carried == unseenVersion ? std::nullopt : carried);
}

ChangeRows restack(StoreSteps &steps, const Settled &settled, std::optional<TimeEntryResponse> ground)
{
    ChangeRows rows;
    ChangeRows changed;
    steps.readRowsOf(settled.entryId, settled.seq, rows);
    for (PendingChange &row : rows) {
        std::optional<ChangeBase> base;
        steps.read(ChangeBase::key(row.seq), base);
        if (!ground || row.change.version() == unseenVersion || (!base && settled.how == Settled::keptTheirs))
            break;
        // What was made without keeping what its user saw stands as it is.
        Rebased rebased =
            base ? putOnTop(row.change, base->entry, *ground, settled.seen) : Rebased{row.change, false};
        const bool asks = rebased.isContested && settled.how != Settled::refused;
        if (asks)
            row.change = row.change.withVersion(unseenVersion);
        else
            row.change =
                settled.version ? rebased.change.withVersion(*settled.version) : std::move(rebased.change);
        steps.writeRow(row);
        changed.push_back(row);
        if (asks)
            break;
        if (base)
            steps.write(ChangeBase::key(row.seq), ChangeBase{*ground, base->seen});
        ground = outcomeAfter(row.change, std::move(*ground));
    }
    return changed;
}

ChangeRows hideVersion(StoreSteps &steps, const std::string &entryId, std::int64_t after)
{
    ChangeRows rows;
    steps.readRowsOf(entryId, after, rows);
    std::erase_if(rows, [](const PendingChange &row) { return row.change.version().has_value(); });
    for (PendingChange &row : rows) {
        row.change = row.change.withVersion(unseenVersion);
        steps.writeRow(row);
    }
    return rows;
}

} // namespace orvane::outbox
