// SPDX-License-Identifier: GPL-3.0-or-later
#include "Entries/EntryAccess.h"
#include "Http/Problems.h"
#include "Requests/Router.h"
#include "Security/RandomText.h"

#include <algorithm>

namespace orvane::server {

namespace {

EntryRecords entries(Call &call)
{
    return EntryRecords(call.database);
}

/// A user has one running entry: starting one ends the other, at the new one's start. When that lies before
/// the other's start (a start entered for earlier, or one that waited on a device without a connection), the
/// other ends now, so that its time is not lost. Nothing is required of the other's details: refusing here
/// would lose the new entry for the old one's sake.
void stopOther(Call &call, const EntryRecord &started)
{
    auto other = entries(call).running(call.caller.userId);
    if (!other || other->entry.id == started.entry.id)
        return;
    const Instant start = other->entry.start;
    other->entry.stop = started.entry.start >= start ? started.entry.start : std::max(call.now, start);
    entries(call).update(*other);
    call.changedForCaller(ChangeTopic::timeEntries, other->entry.workspaceId);
}

/// Stands for what a request to create asks for, wherever it asks for it.
std::string creationDigest(const operations::CreateTimeEntry::Input &input)
{
    return digestText(input.workspaceId + "\n" + encodeJson(input.body));
}

bool isIdentifier(const std::string &text)
{
    return std::ranges::all_of(text, [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
               c == '_';
    });
}

/// A creation under a known identifier: the same one delivered again is answered as the first was, with the
/// entry as it is by now.
HttpResponse createdAgain(Call &call, const EntryRecord &known, const std::string &digest)
{
    if (known.userId == call.caller.userId && known.creationDigest == digest)
        return jsonAnswer(200, known.entry);
    return conflict("Another entry has this identifier.");
}

HttpResponse createEntry(Call &call, const WorkspaceAccess &workspace,
                         const operations::CreateTimeEntry::Input &input)
{
    if (!isIdentifier(input.body.id))
        return invalid("id", "An identifier is made of letters, digits, - and _.");
    EntryRecord record;
    record.userId = call.caller.userId;
    record.creationDigest = creationDigest(input);
    if (const auto known = entries(call).find(input.body.id))
        return createdAgain(call, *known, record.creationDigest);
    if (entries(call).wasRemoved(input.body.id))
        return conflict("The entry of this identifier was deleted.");
    record.entry.id = input.body.id;
    record.entry.workspaceId = workspace.id();
    takeContents(record, contentsOf(input.body));
    const auto added = addEntry(call, workspace, std::move(record));
    return added ? jsonAnswer(201, *added) : added.error();
}

HttpResponse listEntries(Call &call, const WorkspaceAccess &workspace,
                         const operations::ListTimeEntries::Input &input)
{
    if (input.from >= input.to)
        return invalid(400, {{"to", {"Must lie after from."}}});
    return jsonAnswer(200, entries(call).inRange(call.caller.userId, workspace.id(), input.from, input.to));
}

HttpResponse getCurrent(Call &call, const operations::GetCurrentTimeEntry::Input &)
{
    const auto running = entries(call).running(call.caller.userId);
    return running ? jsonAnswer(200, running->entry) : noBody(204);
}

HttpResponse getEntry(Call &call, const WorkspaceAccess &workspace,
                      const operations::GetTimeEntry::Input &input)
{
    const auto found = findEntry(call, workspace, input.entryId);
    return found ? jsonAnswer(200, found->entry) : found.error();
}

/// The version as given or in the quotes of an entity tag; without one, or with "*", any will do.
bool isVersion(const std::optional<std::string> &ifMatch, const TimeEntryResponse &entry)
{
    return !ifMatch || *ifMatch == entry.version || *ifMatch == "\"" + entry.version + "\"" ||
           *ifMatch == "*";
}

/// Changes the caller's entry through `change`, provided that it is still the version which they saw.
template <class Input, class Change>
HttpResponse changeEntry(Call &call, const WorkspaceAccess &workspace, const Input &input, Change change)
{
    const auto before = findEntry(call, workspace, input.entryId);
    if (!before)
        return before.error();
    if (!isVersion(input.ifMatch, before->entry))
        return entryChanged(before->entry);
    return change(*before);
}

HttpResponse answered(const Result<TimeEntryResponse, HttpResponse> &kept)
{
    return kept ? jsonAnswer(200, *kept) : kept.error();
}

HttpResponse updateEntry(Call &call, const WorkspaceAccess &workspace,
                         const operations::UpdateTimeEntry::Input &input)
{
    return changeEntry(call, workspace, input, [&](const EntryRecord &before) {
        EntryRecord after = before;
        takeContents(after, input.body);
        return answered(keepEntry(call, workspace, before, std::move(after)));
    });
}

HttpResponse stopEntry(Call &call, const WorkspaceAccess &workspace,
                       const operations::StopTimeEntry::Input &input)
{
    return changeEntry(call, workspace, input, [&](const EntryRecord &before) {
        // Someone else stopped it meanwhile, at another time: which one holds is for the user to say.
        if (before.entry.stop && *before.entry.stop != input.body.stop)
            return entryChanged(before.entry);
        EntryRecord after = before;
        after.entry.stop = input.body.stop;
        return answered(keepEntry(call, workspace, before, std::move(after)));
    });
}

HttpResponse deleteEntry(Call &call, const WorkspaceAccess &workspace,
                         const operations::DeleteTimeEntry::Input &input)
{
    return changeEntry(call, workspace, input, [&](const EntryRecord &before) {
        const auto removed = removeEntry(call, workspace, before);
        return removed ? noBody(204) : removed.error();
    });
}

} // namespace

Result<EntryRecord, HttpResponse> findEntry(Call &call, const WorkspaceAccess &workspace,
                                            const std::string &entryId)
{
    auto found = entries(call).find(entryId);
    if (!found || found->userId != call.caller.userId || found->entry.workspaceId != workspace.id())
        return failure(noSuch("time entry"));
    return std::move(*found);
}

Result<TimeEntryResponse, HttpResponse> addEntry(Call &call, const WorkspaceAccess &workspace,
                                                 EntryRecord record)
{
    if (auto faults = entryFaults(call, workspace, record); !faults.empty())
        return failure(invalid(422, std::move(faults)));
    if (changesLockedTime(workspace, nullptr, &record.entry))
        return failure(timeLocked());
    if (!record.entry.stop)
        stopOther(call, record);
    entries(call).add(record);
    call.changedForCaller(ChangeTopic::timeEntries, workspace.id());
    return std::move(record.entry);
}

Result<void, HttpResponse> removeEntry(Call &call, const WorkspaceAccess &workspace,
                                       const EntryRecord &record)
{
    if (changesLockedTime(workspace, &record.entry, nullptr))
        return failure(timeLocked());
    entries(call).remove(record, call.now);
    call.changedForCaller(ChangeTopic::timeEntries, workspace.id());
    return {};
}

Result<TimeEntryResponse, HttpResponse> keepEntry(Call &call, const WorkspaceAccess &workspace,
                                                  const EntryRecord &before, EntryRecord after)
{
    if (after == before)
        return before.entry;
    if (auto faults = entryFaults(call, workspace, after); !faults.empty())
        return failure(invalid(422, std::move(faults)));
    if (changesLockedTime(workspace, &before.entry, &after.entry))
        return failure(timeLocked());
    if (!after.entry.stop)
        stopOther(call, after);
    entries(call).update(after);
    call.changedForCaller(ChangeTopic::timeEntries, workspace.id());
    return std::move(after.entry);
}

void addEntryHandlers(Router &router)
{
    router.add<operations::GetCurrentTimeEntry>(getCurrent);
    router.add<operations::ListTimeEntries>(listEntries);
    router.add<operations::CreateTimeEntry>(createEntry);
    router.add<operations::GetTimeEntry>(getEntry);
    router.add<operations::UpdateTimeEntry>(updateEntry);
    router.add<operations::StopTimeEntry>(stopEntry);
    router.add<operations::DeleteTimeEntry>(deleteEntry);
}

} // namespace orvane::server
