// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/EntryAnswers.h"

#include "Client/OrvaneClient.h"
#include "Input/Candidates.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"

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
    Account *account = context->account();
    Tracker &tracker = account->tracker();
    auto id = chooseById("entry", typed, knownIds(tracker));
    if (!id && !id.error().isAmbiguous && account->isReachable() && !typed.empty()) {
        context->progress().begin("Looking for the entry …");
        if (typed.size() == wholeIdLength) {
            const auto entry = co_await account->client().getTimeEntry(tracker.workspace().id, typed);
            if (entry)
                co_await tracker.loadDays(tracker.time().dayKey(entry->start), 1);
        } else {
            const DayKey first =
                tracker.time().weekStartContaining(tracker.time().today()).adding(-7 * weeksSearched);
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

} // namespace orvane
