// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Account/StoredStatus.h"
#include "CommandTree.h"
#include "Commands/EntryAnswers.h"
#include "Commands/ZoneMessage.h"
#include "Input/MomentText.h"
#include "Output/AccountText.h"
#include "Output/EntryHints.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Output/StatusLine.h"
#include "Time/AppClock.h"

#include <algorithm>
#include <iterator>

namespace orvane {

namespace {

/// What the running timer lacks, and the command that gives it.
std::vector<std::string> lackMessages(const Tracker &tracker)
{
    const auto missing =
        tracker.running() ? tracker.missingTo(*tracker.running()) : std::vector<RequiredDetail>();
    if (missing.empty())
        return {};
    return {stopNeedsText(missing)};
}

CommandTask status(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    co_await context->lookBeside();
    Account &account = **opened;
    Tracker &tracker = account.tracker();
    const auto today = tracker.days(tracker.time().today(), 1);
    std::vector<std::string> messages = lackMessages(tracker);
    std::ranges::move(zoneMessages(*context), std::back_inserter(messages));
    if (!context->json())
        co_return CommandAnswer{
            .output = accountLine(account, context->style()) +
                      EntryWriter(tracker, context->style()).status(today.front(), account.me().preferences),
            .messages = std::move(messages)};
    const WorkspaceSummary &workspace = tracker.workspace();
    const Catalog &catalog = tracker.catalog();
    co_return CommandAnswer{.output = shapes::text(shapes::Status{
                                .server = shapes::server(account),
                                .account = shapes::person(account),
                                .workspace = {workspace.id, workspace.name, workspace.role},
                                .running = shapes::entry(tracker.running(), catalog, AppClock::now()),
                                .today = shapes::day(today.front(), catalog, AppClock::now()),
                                .outbox = shapes::queue(account.outbox(), account.isReachable())})};
}

/// For a bar that asks again and again: only what is kept here is looked at, without an event loop.
CommandResult formattedStatus(const GlobalOptions &options, const std::string &format)
{
    if (options.json)
        return failure(CommandFailure::usage("--format and --json do not go together."));
    if (const auto checked = statusLine(format, std::nullopt); !checked)
        return failure(CommandFailure::usage(checked.error()));
    const Installation installation(options.dataFolder);
    const auto status = StoredStatus::read(
        installation, {.server = options.server, .workspace = options.workspace, .zone = options.zone},
        AppClock::now());
    return statusLine(format, status)
        .map([](const std::string &line) { return CommandAnswer{.output = line + "\n"}; })
        .map_error([](const std::string &message) { return CommandFailure::usage(message); });
}

void addStatusCommand(CommandTree &tree, const std::string &group)
{
    const auto format = std::make_shared<std::optional<std::string>>();
    CLI::App *command =
        tree.add("status", "Show the running timer and today's entries; so does orvane alone", group);
    CommandTree::addText(command, "--format", *format, "TEXT",
                         "One line for a status bar from what is known here, without asking the server: "
                         "{running}, {elapsed}, {today}, {project} and {waiting} are filled in");
    CommandTree::addFooter(command, "In the configuration of tmux: set -g status-right "
                                    "\"#(orvane status --format '{running} {elapsed}')\"");
    tree.onRun(&tree.root(), status);
    tree.onRun(command, status);
    tree.onRunPlain(
        command,
        [format](const CommandTree &used) { return formattedStatus(used.options(), format->value()); },
        [format] { return format->has_value(); });
}

CommandTask start(Context context, EntryOptions options)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    const Tracker &tracker = (*opened)->tracker();
    const TypedSentence typed = TypedSentence::read(options.sentence, **opened, options.literally);
    if (auto wrong = misreadTime(typed, tracker, "recorded"))
        co_return failure(std::move(*wrong));
    const auto draft = draftOf(typed, options, tracker);
    if (!draft)
        co_return failure(draft.error());
    const auto times = draft->times(tracker.time(), AppClock::now());
    if (!times && times.error() == EntryTimesProblem::endWithoutStart)
        co_return failure(CommandFailure::usage(timesText(times.error())));
    co_return co_await record(context, options, typed, *draft);
}

struct StopOptions {
    std::optional<std::string> at;
    EntryOptions entry;
};

/// Where a stop ends the running timer.
Result<Instant, CommandFailure> endOf(const std::optional<std::string> &at,
                                      const EntrySentence::Options &reading, const Tracker &tracker,
                                      Instant now)
{
    if (!at)
        return now;
    const auto moment = readMoment(*at, reading, tracker.time());
    if (!moment)
        return failure(CommandFailure::usage(moment.error()));
    return EntryTimes::timerStop(*moment, tracker.running() ? tracker.running()->start : now, tracker.time(),
                                 AppClock::now());
}

/// What an end is to be after.
std::string beganText(Instant start, const UserTime &time)
{
    const DayKey day = time.dayKey(start);
    return "The timer began at " + time.clockLabel(start) +
           (day == time.today() ? "." : ", " + time.dayLabel(day) + ".");
}

/// Stops the timer, with what else was said of it in the same change.
CommandTask stopWith(Context context, EntryOptions options, TypedSentence typed, Instant end)
{
    Tracker &tracker = context->account()->tracker();
    const std::optional<TimeEntryResponse> before = tracker.running();
    SaveResult result;
    if (options.nameDetails() && before) {
        EntryDraft draft = EntryDraft::of(*before);
        draft.take(typed.reading, tracker.catalog());
        const auto whole = options.detailsIn(std::move(draft), tracker.catalog());
        if (!whole)
            co_return failure(CommandFailure::of(whole.error()));
        const EntryRequest request = whole->at({before->start, end});
        result = co_await tracker.stop(end, request.details, request.describeParts);
    } else {
        result = co_await tracker.stop(end);
    }
    if (result.outcome == SaveOutcome::rejected && before && end < before->start)
        result.message += " " + beganText(before->start, tracker.time());
    CommandAnswer answer = co_await conclude(context, result, "Stopped", before, typed.leftOut(tracker));
    rememberPicks(*context, typed, answer);
    co_return answer;
}

CommandTask stop(Context context, StopOptions options)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    Tracker &tracker = (*opened)->tracker();
    const TypedSentence typed =
        TypedSentence::read(options.entry.sentence, **opened, options.entry.literally);
    if (typed.namesTime())
        co_return failure(
            CommandFailure::usage("When the timer ended is said with --at, as in: orvane stop --at 17:30. "
                                  "To take the line as it stands: --literally"));
    if (auto wrong = misreadChange(typed, tracker, "stopped"))
        co_return failure(std::move(*wrong));
    const ActionMoment moment = actionMoment(*context);
    const auto end = endOf(options.at, typed.options, tracker, moment.at);
    if (!end)
        co_return failure(end.error());
    // What ran when the stop was asked for has ended where the other timer began.
    if (!options.at && moment.kind == ActionMoment::Kind::overtaken)
        co_return refusal(*context, "Another timer was started elsewhere while this command waited, and runs "
                                    "on. To stop that one: orvane stop");
    if (moment.kind == ActionMoment::Kind::ahead && (!options.at || *end < moment.at))
        co_return refusalAhead(*context, "That is before the timer's start.");
    co_return co_await stopWith(context, options.entry, typed, *end);
}

struct ContinueOptions {
    std::optional<std::string> id;
    EntryOptions entry;
};

/// Whether a first word is the identifier of an entry rather than the beginning of a sentence.
bool looksLikeId(const std::string &word)
{
    constexpr std::size_t leastLetters = 4;
    return word == "last" ||
           (word.size() >= leastLetters && word.find_first_not_of("0123456789abcdef-") == std::string::npos);
}

/// The entry to go on with, and what remains as its sentence.
Task<Result<TimeEntryResponse, CommandAnswer>> continued(Context context, ContinueOptions *options)
{
    Tracker &tracker = context->account()->tracker();
    if (options->id && looksLikeId(*options->id)) {
        const auto named = co_await findEntry(context, *options->id);
        if (named)
            co_return TimeEntryResponse(*named);
    }
    if (options->id) {
        const std::string rest = options->entry.sentence ? " " + *options->entry.sentence : "";
        options->entry.sentence = *options->id + rest;
    }
    auto last = co_await tracker.lastStopped();
    if (!last)
        co_return failure(answerTo(*context, last.error(), ""));
    co_return TimeEntryResponse(*last);
}

CommandTask continueEntry(Context context, ContinueOptions options)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    if (actionMoment(*context).kind == ActionMoment::Kind::ahead)
        co_return refusalAhead(*context, "Another timer is set already.");
    const auto entry = co_await continued(context, &options);
    if (!entry)
        co_return CommandAnswer(entry.error());
    const Tracker &tracker = (*opened)->tracker();
    const TypedSentence typed =
        TypedSentence::read(options.entry.sentence, **opened, options.entry.literally);
    if (auto wrong = misreadTime(typed, tracker, "recorded"))
        co_return failure(std::move(*wrong));
    const auto draft = draftOf(typed, options.entry, tracker, EntryDraft::continuing(*entry));
    if (!draft)
        co_return failure(draft.error());
    co_return co_await record(context, options.entry, typed, *draft);
}

} // namespace

void addTimerCommands(CommandTree &tree)
{
    const std::string group = "The timer";
    addStatusCommand(tree, group);

    const auto options = std::make_shared<EntryOptions>();
    CLI::App *startCommand =
        tree.add("start", "Start the timer, or record a finished entry when an end is named", group);
    CommandTree::addSentence(startCommand, "SENTENCE", options->sentence, sentenceText);
    addEntryOptions(startCommand, *options);
    tree.onRun(
        startCommand, [options](Context context) { return start(std::move(context), *options); },
        FailureForm::outcome);

    const auto stopped = std::make_shared<StopOptions>();
    CLI::App *stopCommand = tree.add("stop", "Stop the timer, and say what it was", group);
    CommandTree::addSentence(stopCommand, "SENTENCE", stopped->entry.sentence,
                             "What to change of it: \"Fix the sync @api #review\"; no time");
    CommandTree::addText(stopCommand, "--at", stopped->at, "TIME",
                         "When it ended: 930, 9:30, -15 for 15 minutes ago");
    addEntryOptions(stopCommand, stopped->entry, false);
    tree.onRun(
        stopCommand, [stopped](Context context) { return stop(std::move(context), *stopped); },
        FailureForm::outcome);

    const auto continued = std::make_shared<ContinueOptions>();
    CLI::App *continueCommand = tree.add("continue", "Start the timer with what an entry said", group);
    CommandTree::addText(continueCommand, "ID", continued->id, "",
                         "The entry; the last one unless it is named");
    CommandTree::addSentence(continueCommand, "SENTENCE", continued->entry.sentence, "What is different now");
    addEntryOptions(continueCommand, continued->entry, false);
    tree.onRun(
        continueCommand,
        [continued](Context context) { return continueEntry(std::move(context), *continued); },
        FailureForm::outcome);
}

} // namespace orvane
