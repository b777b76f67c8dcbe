// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Account/StoredStatus.h"
#include "CommandTree.h"
#include "Commands/EntryAnswers.h"
#include "Input/MomentText.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Output/StatusLine.h"
#include "Time/AppClock.h"

namespace orvane {

namespace {

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
    if (!context->json())
        co_return CommandAnswer{
            .output = EntryWriter(tracker, context->style()).status(today.front(), account.me().preferences)};
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
    const TypedSentence typed = TypedSentence::read(options.sentence, **opened);
    const auto draft = draftOf(typed, options, tracker);
    if (!draft)
        co_return failure(draft.error());
    const auto times = draft->times(tracker.time(), AppClock::now());
    if (!times && times.error() == EntryTimesProblem::endWithoutStart)
        co_return failure(CommandFailure::usage(timesText(times.error())));
    co_return co_await record(context, options, typed, *draft);
}

/// Where a stop ends the running timer.
Result<Instant, CommandFailure> endOf(const std::optional<std::string> &at, const Tracker &tracker,
                                      Instant now)
{
    if (!at)
        return now;
    const auto moment = readMoment(*at, tracker.time());
    if (!moment)
        return failure(CommandFailure::usage(moment.error()));
    return EntryTimes::timerStop(*moment, tracker.running() ? tracker.running()->start : now, tracker.time(),
                                 AppClock::now());
}

CommandTask stop(Context context, std::optional<std::string> at)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    Tracker &tracker = (*opened)->tracker();
    const ActionMoment moment = actionMoment(*context);
    const auto end = endOf(at, tracker, moment.at);
    if (!end)
        co_return failure(end.error());
    // What ran when the stop was asked for has ended where the other timer began.
    if (!at && moment.kind == ActionMoment::Kind::overtaken)
        co_return refusal(*context, "Another timer was started elsewhere while this command waited, and runs "
                                    "on. To stop that one: orvane stop");
    if (moment.kind == ActionMoment::Kind::ahead && (!at || *end < moment.at))
        co_return refusalAhead(*context, "That is before the timer's start.");
    const std::optional<TimeEntryResponse> before = tracker.running();
    co_return answerTo(*context, co_await tracker.stop(*end), "Stopped", before);
}

CommandTask continueLast(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    Tracker &tracker = (*opened)->tracker();
    const ActionMoment moment = actionMoment(*context);
    if (moment.kind == ActionMoment::Kind::ahead)
        co_return refusalAhead(*context, "Another timer is set already.");
    const std::optional<TimeEntryResponse> before = tracker.running();
    const SaveResult result = co_await tracker.continueLast(moment.at);
    co_return withStopped(answerTo(*context, result, "Started"), *context, before);
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

    const auto at = std::make_shared<std::optional<std::string>>();
    CLI::App *stopCommand = tree.add("stop", "Stop the timer", group);
    CommandTree::addText(stopCommand, "--at", *at, "TIME",
                         "When it ended: 930, 9:30, -15 for 15 minutes ago");
    tree.onRun(
        stopCommand, [at](Context context) { return stop(std::move(context), *at); }, FailureForm::outcome);

    tree.onRun(tree.add("continue", "Start the timer with what the last entry said", group), continueLast,
               FailureForm::outcome);
}

} // namespace orvane
