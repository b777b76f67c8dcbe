// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/EntryAnswers.h"

#include "Catalog/NameLookup.h"
#include "Client/OrvaneClient.h"
#include "CommandTree.h"
#include "Input/LookupText.h"
#include "Output/EntryHints.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "QuickEntry/PalettePicks.h"
#include "Terminal/StandardStreams.h"
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

/// The result's own message, with the field where the server found fault with one.
std::string messageOf(const SaveResult &result)
{
    return result.error && result.message == describe(*result.error)
               ? CommandFailure::of(*result.error).message
               : result.message;
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

/// What is missing, and the command that gives it.
std::string lackText(const SaveResult &result, std::string_view verb, const Tracker &tracker)
{
    const std::string lack = "It lacks " + missingText(result.missing) + ". ";
    if (verb != "Stopped" && verb != "Started")
        return lack + "Say it in the line, as in: \"… " + missingSentence(result.missing) + "\"";
    // Nothing stays of a stop that is refused: what it did name has to be said again.
    const auto all = tracker.running() ? tracker.missingTo(*tracker.running()) : result.missing;
    return lack + (all == result.missing ? "To add that and stop" : "Say all of it in one line to stop") +
           ": orvane stop \"" + missingSentence(all) + "\"";
}

std::string outcomeText(const CommandContext &context, const SaveResult &result,
                        const std::vector<std::string> &messages, const std::vector<std::string> &notes)
{
    const Tracker &tracker = context.account()->tracker();
    const auto entry = shapes::entry(result.entry, tracker.catalog(), AppClock::now());
    if (isDone(result.outcome))
        return shapes::text(
            shapes::Outcome{result.outcome, result.isQueued, entry, text(messageOf(result)), notes});
    const CommandFailure failure = result.error ? CommandFailure::of(*result.error, messages.front())
                                                : CommandFailure::of(messages.front());
    if (result.outcome == SaveOutcome::needsDetails)
        return shapes::text(shapes::LackingOutcome{result.outcome, result.isQueued, entry, failure.message,
                                                   notes, shapes::error(failure),
                                                   missingNames(result.missing)});
    return shapes::text(shapes::FailedOutcome{result.outcome, result.isQueued, entry, failure.message, notes,
                                              shapes::error(failure)});
}

} // namespace

void addNotes(CommandAnswer &answer, const std::vector<std::string> &notes)
{
    for (const std::string &note : notes)
        answer.messages.push_back("Note: " + note);
}

CommandAnswer answerTo(const CommandContext &context, const SaveResult &result, std::string_view verb,
                       const std::optional<TimeEntryResponse> &before, const std::vector<std::string> &asDone)
{
    const bool done = isDone(result.outcome);
    std::vector<std::string> notes = asDone;
    if (!done)
        std::ranges::transform(asDone, notes.begin(), noteOfRefused);
    CommandAnswer answer;
    answer.exitStatus = done ? ExitStatus::done : ExitStatus::failed;
    // Of a start that ends another timer first, the start is what was done.
    const std::string message = messageOf(result);
    if (done && result.error)
        answer.messages.push_back("The timer before it could not be stopped: " + message);
    else if (!message.empty())
        answer.messages.push_back(message);
    else if (!done)
        answer.messages.emplace_back("That could not be done.");
    if (result.outcome == SaveOutcome::needsDetails)
        answer.messages.push_back(lackText(result, verb, context.account()->tracker()));
    if ((done || result.outcome == SaveOutcome::needsDetails) && !context.json())
        addNotes(answer, notes);
    if (context.json())
        answer.output = outcomeText(context, result, answer.messages, notes);
    else if (const auto &shown = result.entry ? result.entry : before; done && shown)
        answer.output = EntryWriter(context.account()->tracker(), context.style()).done(verb, *shown);
    return answer;
}

Task<> noteStep(Context context, EntryStep step)
{
    const auto noted = co_await context->account()->history().add(std::move(step));
    if (!noted)
        writeMessage("It cannot be taken back: " + describe(noted.error()));
}

Task<CommandAnswer> conclude(Context context, SaveResult result, std::string verb,
                             std::optional<TimeEntryResponse> before, std::vector<std::string> notes)
{
    co_await noteStep(context, {result.turns});
    co_return answerTo(*context, result, verb, before, notes);
}

CommandAnswer together(const CommandContext &context, std::vector<CommandAnswer> answers)
{
    CommandAnswer all;
    for (CommandAnswer &answer : answers) {
        if (context.json()) {
            answer.output.pop_back(); // its line break
            all.output += (all.output.empty() ? "" : ",");
        }
        all.output += answer.output;
        std::ranges::move(answer.messages, std::back_inserter(all.messages));
        all.exitStatus = std::max(all.exitStatus, answer.exitStatus);
    }
    if (context.json())
        all.output = "[" + all.output + "]\n";
    return all;
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
    if (typed == "last") {
        if (tracker.entries().empty())
            co_return failure(CommandFailure::of("There is no entry in this week or those before it."));
        co_return TimeEntryResponse(tracker.entries().front());
    }
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
    return options.timesIn(std::move(draft), typed.options, tracker.time())
        .map_error([](const std::string &message) { return CommandFailure::usage(message); });
}

namespace {

std::string refusedLine(const std::string &why, std::string_view verb)
{
    return why + " Nothing was " + std::string(verb) + ". To take the line as it stands: --literally";
}

} // namespace

std::optional<CommandFailure> misreadTime(const TypedSentence &typed, const Tracker &tracker,
                                          std::string_view verb)
{
    const auto unread = typed.unreadTime(tracker.time());
    return unread ? std::optional(CommandFailure::usage(refusedLine(*unread, verb))) : std::nullopt;
}

std::optional<CommandFailure> misreadChange(const TypedSentence &typed, const Tracker &tracker,
                                            std::string_view verb)
{
    if (auto wrong = misreadTime(typed, tracker, verb))
        return wrong;
    if (!typed.saysNothing())
        return {};
    const std::string why = refusedLine("What was not understood would become the description.", verb);
    return CommandFailure::usage(typed.withNotes(why, tracker));
}

Task<std::vector<EntryWarning>> warningsOf(Context context, EntryTimes times, std::string id)
{
    Account &account = *context->account();
    Tracker &tracker = account.tracker();
    const DayKey day = tracker.time().dayKey(times.start);
    if (!tracker.knownDays().contains(day, 1) && account.isReachable())
        co_await tracker.loadDays(day, 1);
    co_return EntryWarning::of(times, id, tracker.entries(), AppClock::now());
}

namespace {

/// What a timer will still need before it may stop.
std::vector<std::string> laterNeeds(const EntryDraft &draft, const Tracker &tracker)
{
    const auto missing = tracker.settings() ? draft.missing(tracker.rules()) : std::vector<RequiredDetail>();
    if (missing.empty())
        return {};
    return {stopNeedsText(missing)};
}

CommandTask recordFinished(Context context, TypedSentence typed, EntryRequest request)
{
    Tracker &tracker = context->account()->tracker();
    const auto warnings = co_await warningsOf(context, {request.start, request.stop}, {});
    std::vector<std::string> notes = warningTexts(warnings, tracker.time());
    std::ranges::move(typed.leftOut(tracker), std::back_inserter(notes));
    CommandAnswer answer =
        co_await conclude(context, co_await tracker.create(std::move(request)), "Added", {}, notes);
    rememberPicks(*context, typed, answer);
    co_return answer;
}

} // namespace

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
    if (*request && (*request)->stop)
        co_return co_await recordFinished(context, std::move(typed), **std::move(request));
    const ActionMoment moment = actionMoment(*context);
    const Instant at = *request ? (*request)->start : moment.at;
    if (*request && !ActionMoment::mayStart(at, whole->namesStartDay(), AppClock::now()))
        co_return refusal(*context, refusedStart(at, time));
    if (moment.kind == ActionMoment::Kind::ahead && at <= moment.at)
        co_return refusalAhead(*context, "Another timer is set already.");
    const std::optional<TimeEntryResponse> before = tracker.running();
    const SaveResult result = co_await tracker.create(whole->at({millisecondsFloor(at), {}}));
    std::vector<std::string> notes;
    if (*request && at > AppClock::now())
        notes.push_back(time.clockLabel(at) + " is still to come.");
    std::ranges::move(typed.leftOut(tracker), std::back_inserter(notes));
    if (isDone(result.outcome))
        std::ranges::move(laterNeeds(*whole, tracker), std::back_inserter(notes));
    CommandAnswer answer =
        withStopped(co_await conclude(context, result, "Started", {}, notes), *context, before);
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

void addEntryOptions(CLI::App *command, EntryOptions &options, bool withTimes)
{
    CommandTree::addText(command, "--description", options.description, "TEXT", "What the work is");
    if (withTimes) {
        CommandTree::addText(command, "--start", options.start, "TIME", "When it began");
        CommandTree::addText(command, "--stop", options.stop, "TIME", "When it ended");
    }
    CommandTree::addText(command, "--project", options.project, "PROJECT",
                         "A name or an identifier; \"\" for none");
    CommandTree::addText(command, "--task", options.task, "TASK", "A name or an identifier; \"\" for none");
    CommandTree::addTexts(command, "--tag", options.tags, "TAG",
                          "A name or an identifier; once for each tag, \"\" for none");
    CommandTree::addSwitch(command, "billable", options.billable, "The time can be billed",
                           "The time cannot be billed");
    CommandTree::addFlag(command, "--literally", options.literally,
                         "Take the sentence as it stands: no names, no time");
    if (withTimes)
        CommandTree::addFooter(
            command, "A TIME is a time of day (930, 9:30, 9:30pm), one with its day (\"yesterday 9:30\", "
                     "\"2026-03-01 9:30\"), \"now\", how long ago (-15, -1h), or "
                     "2026-03-01T09:30:00Z.");
}

} // namespace orvane
