// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/EntryAnswers.h"

#include "Catalog/NameLookup.h"
#include "Client/OrvaneClient.h"
#include "CommandTree.h"
#include "Input/LookupText.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "QuickEntry/PalettePicks.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"

#include <algorithm>
#include <iterator>

namespace orvane {

namespace {

/// How far back a cut identifier is looked for.
constexpr int weeksSearched = 8;
constexpr std::size_t wholeIdLength = 36;
/// From here on a status says that the server could not tell.
constexpr std::int64_t firstServerFault = 500;

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

/// Where an entry was looked for that is none of those at hand.
enum class Search { nowhere, lastWeeks, everywhere };

/// Makes the entry known that the (cut) identifier may mean: a whole one is asked for, a cut one looked for
/// in the last weeks.
Task<Search> askForEntry(Context context, std::string typed)
{
    Account *account = context->account();
    Tracker &tracker = account->tracker();
    if (!account->isReachable())
        co_return Search::nowhere;
    context->progress().begin("Looking for the entry …");
    Search search = Search::nowhere;
    if (typed.size() == wholeIdLength) {
        const auto entry = co_await account->client().getTimeEntry(tracker.workspace().id, typed);
        const bool isAnswered =
            entry ? (co_await tracker.loadDays(tracker.time().dayKey(entry->start), 1)).has_value()
                  : std::holds_alternative<APIError>(entry.error()) &&
                        std::get<APIError>(entry.error()).status < firstServerFault;
        search = isAnswered ? Search::everywhere : Search::nowhere;
    } else {
        const DayKey first = tracker.time()
                                 .weekStartContaining(tracker.time().today())
                                 .adding(std::int64_t{-7} * weeksSearched);
        if (co_await tracker.loadDays(first, 7 * weeksSearched))
            search = Search::lastWeeks;
    }
    context->progress().finish();
    co_return search;
}

std::string notFound(const std::string &typed, Search search)
{
    const std::string what = "entry \"" + printable(typed) + "\"";
    if (search == Search::nowhere)
        return "No " + what + " is known on this computer, and the server cannot be asked now.";
    return "There is no " + what + " in the last " + std::to_string(weeksSearched) +
           " weeks. An older one is found by its whole identifier.";
}

/// Why the timer is not started at a time that is still to come.
std::string refusedStart(Instant at, const UserTime &time)
{
    const std::string clock = time.clockLabel(at);
    return clock + " is still to come. To start the timer then all the same, say the day too: --start \"" +
           time.dayKey(at).description() + " " + clock + "\"";
}

} // namespace

void addNotes(CommandAnswer &answer, const std::vector<std::string> &notes)
{
    for (const std::string &note : notes)
        answer.messages.push_back("Note: " + note);
}

CommandAnswer answerTo(const CommandContext &context, const SaveResult &result, std::string_view verb,
                       const std::optional<TimeEntryResponse> &before, const std::vector<std::string> &notes)
{
    const bool done = isDone(result.outcome);
    CommandAnswer answer;
    answer.exitStatus = done ? ExitStatus::done : ExitStatus::failed;
    // Of a start that ends another timer first, the start is what was done.
    if (done && result.error)
        answer.messages.push_back("The timer before it could not be stopped: " + result.message);
    else if (!result.message.empty())
        answer.messages.push_back(result.message);
    else if (!done)
        answer.messages.emplace_back("That could not be done.");
    if (done && !context.json())
        addNotes(answer, notes);
    if (context.json()) {
        const Tracker &tracker = context.account()->tracker();
        const shapes::Outcome outcome{result.outcome, result.isQueued,
                                      shapes::entry(result.entry, tracker.catalog(), AppClock::now()),
                                      text(result.message), notes};
        if (done) {
            answer.output = shapes::text(outcome);
        } else {
            const CommandFailure failure = result.error
                                               ? CommandFailure::of(*result.error, answer.messages.front())
                                               : CommandFailure::of(answer.messages.front());
            answer.output =
                shapes::text(shapes::FailedOutcome{outcome.outcome, outcome.queued, outcome.entry,
                                                   failure.message, notes, shapes::error(failure)});
        }
    } else if (const auto &shown = result.entry ? result.entry : before; done && shown) {
        answer.output = EntryWriter(context.account()->tracker(), context.style()).done(verb, *shown);
    }
    return answer;
}

CommandAnswer refusal(const CommandContext &context, std::string message)
{
    SaveResult result;
    result.outcome = SaveOutcome::rejected;
    result.message = std::move(message);
    return answerTo(context, result, "");
}

CommandAnswer refusalAhead(const CommandContext &context, std::string_view what)
{
    Tracker &tracker = context.account()->tracker();
    return refusal(context, std::string(what) + " " +
                                EntryWriter(tracker, context.style()).timerAhead(tracker.running().value()));
}

Task<Result<TimeEntryResponse, CommandFailure>> findEntry(Context context, std::string typed)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    Tracker &tracker = (*opened)->tracker();
    auto id = lookUpId(typed, knownIds(tracker));
    if (!id && !id.error().isAmbiguous() && !typed.empty()) {
        const Search search = co_await askForEntry(context, typed);
        id = lookUpId(typed, knownIds(tracker));
        if (!id && !id.error().isAmbiguous() && search != Search::everywhere)
            co_return failure(CommandFailure::of(notFound(typed, search)));
    }
    if (!id)
        co_return failure(CommandFailure::of(lookupText("entry", typed, id.error())));
    const auto entry = tracker.entry(*id);
    if (!entry)
        co_return failure(CommandFailure::of("The entry " + *id + " is gone."));
    co_return TimeEntryResponse(*entry);
}

ActionMoment actionMoment(const CommandContext &context)
{
    return ActionMoment::of(context.account()->tracker().running(), AppClock::now(), context.waited());
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

Result<EntryDraft, CommandFailure> draftOf(const TypedSentence &typed, const EntryOptions &options,
                                           const Tracker &tracker, EntryDraft draft)
{
    draft.take(typed.reading, tracker.catalog());
    return options.timesIn(std::move(draft), tracker.time()).map_error([](const std::string &message) {
        return CommandFailure::usage(message);
    });
}

CommandTask record(Context context, EntryOptions options, TypedSentence typed, EntryDraft draft)
{
    Tracker &tracker = context->account()->tracker();
    const UserTime &time = tracker.time();
    const auto whole = options.detailsIn(std::move(draft), tracker.catalog());
    if (!whole)
        co_return failure(CommandFailure::of(whole.error()));
    auto request = whole->request(time, AppClock::now());
    if (!request)
        co_return failure(CommandFailure::of(timesText(request.error())));
    if (*request && (*request)->stop) {
        CommandAnswer answer = answerTo(*context, co_await tracker.create(**std::move(request)), "Added", {},
                                        typed.leftOut(tracker.catalog()));
        rememberPicks(*context, typed, answer);
        co_return answer;
    }
    const ActionMoment moment = actionMoment(*context);
    const Instant at = *request ? (*request)->start : moment.at;
    if (*request && !ActionMoment::mayStart(at, whole->namesStartDay(), AppClock::now()))
        co_return refusal(*context, refusedStart(at, time));
    if (moment.kind == ActionMoment::Kind::ahead && at <= moment.at)
        co_return refusalAhead(*context, "Another timer is set already.");
    const std::optional<TimeEntryResponse> before = tracker.running();
    const SaveResult result = co_await tracker.start(whole->details(), at);
    std::vector<std::string> notes;
    if (*request && at > AppClock::now())
        notes.push_back(time.clockLabel(at) + " is still to come.");
    std::ranges::move(typed.leftOut(tracker.catalog()), std::back_inserter(notes));
    CommandAnswer answer = withStopped(answerTo(*context, result, "Started", {}, notes), *context, before);
    rememberPicks(*context, typed, answer);
    co_return answer;
}

void rememberPicks(CommandContext &context, const TypedSentence &typed, const CommandAnswer &answer)
{
    const PalettePicks picks = PalettePicks::of(typed.reading);
    if (answer.exitStatus != ExitStatus::done || picks.isEmpty())
        return;
    const std::string workspace = context.account()->tracker().workspace().id;
    context.installation().setPaletteUsage(
        workspace, picks.notedIn(context.installation().paletteUsage(workspace), AppClock::now()));
}

void addEntryOptions(CLI::App *command, EntryOptions &options)
{
    CommandTree::addText(command, "--description", options.description, "TEXT", "What the work is");
    CommandTree::addText(command, "--start", options.start, "TIME", "When it began");
    CommandTree::addText(command, "--stop", options.stop, "TIME", "When it ended");
    CommandTree::addText(command, "--project", options.project, "PROJECT",
                         "A name or an identifier; \"\" for none");
    CommandTree::addText(command, "--task", options.task, "TASK", "A name or an identifier; \"\" for none");
    CommandTree::addTexts(command, "--tag", options.tags, "TAG",
                          "A name or an identifier; once for each tag, \"\" for none");
    CommandTree::addSwitch(command, "billable", options.billable, "The time can be billed",
                           "The time cannot be billed");
    CommandTree::addFooter(command,
                           "A TIME is a time of day (930, 9:30, 9:30pm), \"now\", how long ago (-15, -1h), "
                           "\"2026-03-01 9:30\" or "
                           "2026-03-01T09:30:00Z.");
}

} // namespace orvane
