// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/EntryAnswers.h"

#include "Client/OrvaneClient.h"
#include "Input/Candidates.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Time/AppClock.h"

namespace orvane {

namespace {

/// How far back a cut identifier is looked for.
constexpr int weeksSearched = 8;
constexpr std::size_t wholeIdLength = 36;

bool isDone(SaveOutcome outcome)
{
    return outcome == SaveOutcome::saved || outcome == SaveOutcome::waiting ||
           outcome == SaveOutcome::stopped;
}

std::optional<std::string> text(const std::string &message)
{
    return message.empty() ? std::nullopt : std::optional(message);
}

std::vector<std::string> knownIds(const Tracker &tracker)
{
    std::vector<std::string> ids;
    for (const TimeEntryResponse &entry : tracker.entries())
        ids.push_back(entry.id);
    if (tracker.running() && !tracker.entry(tracker.running()->id))
        ids.push_back(tracker.running()->id);
    return ids;
}

} // namespace

CommandAnswer answerTo(const CommandContext &context, const SaveResult &result, std::string_view verb,
                       const std::optional<TimeEntryResponse> &before)
{
    const bool done = isDone(result.outcome);
    CommandAnswer answer;
    answer.exitStatus = done ? ExitStatus::done : ExitStatus::failed;
    if (!result.message.empty())
        answer.messages.push_back(result.message);
    else if (!done)
        answer.messages.emplace_back("That could not be done.");
    if (context.json()) {
        const shapes::Outcome outcome{result.outcome, result.isQueued, result.entry, text(result.message)};
        if (done) {
            answer.output = shapes::text(outcome);
        } else {
            const CommandFailure failure = result.error
                                               ? CommandFailure::of(*result.error, answer.messages.front())
                                               : CommandFailure::of(answer.messages.front());
            answer.output = shapes::text(shapes::FailedOutcome{outcome.outcome, outcome.queued, outcome.entry,
                                                               failure.message, shapes::error(failure)});
        }
    } else if (const auto &shown = result.entry ? result.entry : before; done && shown) {
        answer.output = EntryWriter(context.account()->tracker(), context.style()).done(verb, *shown);
    }
    return answer;
}

Task<Result<TimeEntryResponse, CommandFailure>> findEntry(Context context, std::string typed)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    Account *account = *opened;
    Tracker &tracker = account->tracker();
    auto id = chooseById("entry", typed, knownIds(tracker));
    if (!id && !id.error().isAmbiguous && account->isReachable() && !typed.empty()) {
        context->progress().begin("Looking for the entry …");
        if (typed.size() == wholeIdLength) {
            const auto entry = co_await account->client().getTimeEntry(tracker.workspace().id, typed);
            if (entry)
                co_await tracker.loadDays(tracker.time().dayKey(entry->start), 1);
        } else {
            const DayKey first = tracker.time()
                                     .weekStartContaining(tracker.time().today())
                                     .adding(std::int64_t{-7} * weeksSearched);
            co_await tracker.loadDays(first, 7 * weeksSearched);
        }
        context->progress().finish();
        id = chooseById("entry", typed, knownIds(tracker));
    }
    if (!id)
        co_return failure(CommandFailure::of(id.error().message));
    const auto entry = tracker.entry(*id);
    if (!entry)
        co_return failure(CommandFailure::of("The entry " + *id + " is gone."));
    co_return TimeEntryResponse(*entry);
}

Instant nowFor(const Tracker &tracker)
{
    constexpr std::chrono::minutes tolerance{1};
    const Instant now = AppClock::now();
    const auto &running = tracker.running();
    return running && running->start > now && running->start < now + tolerance ? running->start : now;
}

CommandAnswer withStopped(CommandAnswer answer, const CommandContext &context,
                          const std::optional<TimeEntryResponse> &before)
{
    const Tracker &tracker = context.account()->tracker();
    const auto stopped = before ? tracker.entry(before->id) : std::nullopt;
    if (!context.json() && answer.exitStatus == ExitStatus::done && stopped && stopped->stop)
        answer.output.insert(
            0, EntryWriter(context.account()->tracker(), context.style()).done("Stopped", *stopped));
    return answer;
}

CommandTask record(Context context, EntryOptions options, TypedSentence typed, NamedTimes times)
{
    Tracker &tracker = context->account()->tracker();
    const UserTime &time = tracker.time();
    auto details = withOptions(typed.appliedTo({}, tracker.catalog()), options, tracker.catalog());
    if (!details)
        co_return failure(details.error());
    if (times.stop) {
        const auto span = spanOf(*times.start, *times.stop, time);
        if (!span)
            co_return failure(CommandFailure::of(span.error()));
        EntryRequest request{.details = std::move(*details), .start = span->start, .stop = span->stop};
        CommandAnswer answer = answerTo(*context, co_await tracker.create(std::move(request)), "Added");
        rememberPicks(*context, typed, answer);
        co_return answer;
    }
    const Instant at = times.start ? startOf(*times.start, time) : nowFor(tracker);
    const std::optional<TimeEntryResponse> before = tracker.running();
    const SaveResult result = co_await tracker.start(std::move(*details), at);
    CommandAnswer answer = withStopped(answerTo(*context, result, "Started"), *context, before);
    if (answer.exitStatus == ExitStatus::done && times.start && at > AppClock::now())
        answer.messages.push_back("Note: " + time.clockLabel(at) + " is still to come.");
    rememberPicks(*context, typed, answer);
    co_return answer;
}

void rememberPicks(CommandContext &context, const TypedSentence &typed, CommandAnswer &answer)
{
    if (answer.exitStatus != ExitStatus::done)
        return;
    const Tracker &tracker = context.account()->tracker();
    for (std::string &note : typed.leftOut(tracker.catalog()))
        answer.messages.push_back(std::move(note));
    const std::vector<std::string> keys = typed.usageKeys();
    if (keys.empty())
        return;
    PaletteUsage usage = context.installation().paletteUsage(tracker.workspace().id);
    for (const std::string &key : keys)
        usage.record(key, AppClock::now());
    context.installation().setPaletteUsage(tracker.workspace().id, usage);
}

} // namespace orvane
