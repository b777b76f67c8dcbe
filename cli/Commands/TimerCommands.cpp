// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Commands/EntryAnswers.h"
#include "Input/EntryOptions.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Time/AppClock.h"

namespace orvane {

namespace {

CommandTask status(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    Account &account = **opened;
    Tracker &tracker = account.tracker();
    const auto today = tracker.days(tracker.time().today(), 1);
    if (!context->json())
        co_return CommandAnswer{.output = EntryWriter(tracker, context->style()).status(today.front())};
    const WorkspaceSummary &workspace = tracker.workspace();
    co_return CommandAnswer{
        .output = shapes::text(shapes::Status{.server = shapes::server(account),
                                              .account = shapes::person(account),
                                              .workspace = {workspace.id, workspace.name, workspace.role},
                                              .running = tracker.running(),
                                              .today = shapes::day(today.front(), AppClock::now()),
                                              .outbox = shapes::queue(account.outbox())})};
}

/// Now; the running timer's start when that is just ahead, since a clock that was set back a little is no
/// reason to refuse what happens now.
Instant nowFor(const Tracker &tracker)
{
    constexpr std::chrono::minutes tolerance{1};
    const Instant now = AppClock::now();
    const auto &running = tracker.running();
    return running && running->start > now && running->start < now + tolerance ? running->start : now;
}

/// The timer that a start stopped, in front of the answer to the start.
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

CommandTask start(Context context, EntryOptions options)
{
    if (options.stop && !options.start)
        co_return failure(CommandFailure::usage("An end needs a start; name both with --start and --stop."));
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    Tracker &tracker = (*opened)->tracker();
    const UserTime &time = tracker.time();
    const auto times = namedTimes(options, time);
    if (!times)
        co_return failure(times.error());
    auto details = withOptions({}, options, tracker.catalog());
    if (!details)
        co_return failure(details.error());
    if (times->stop) {
        const auto span = spanOf(*times->start, *times->stop, time);
        if (!span)
            co_return failure(CommandFailure::of(span.error()));
        EntryRequest request{.details = std::move(*details), .start = span->start, .stop = span->stop};
        co_return answerTo(*context, co_await tracker.create(std::move(request)), "Added");
    }
    const Instant at = times->start ? startOf(*times->start, time) : nowFor(tracker);
    const std::optional<TimeEntryResponse> before = tracker.running();
    const SaveResult result = co_await tracker.start(std::move(*details), at);
    CommandAnswer answer = withStopped(answerTo(*context, result, "Started"), *context, before);
    if (answer.exitStatus == ExitStatus::done && times->start && at > AppClock::now())
        answer.messages.push_back("Note: " + time.clockLabel(at) + " is still to come.");
    co_return answer;
}

CommandTask stop(Context context, std::optional<std::string> at)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    Tracker &tracker = (*opened)->tracker();
    Instant end = nowFor(tracker);
    if (at) {
        const auto moment = readMoment(*at, tracker.time());
        if (!moment)
            co_return failure(CommandFailure::usage(moment.error()));
        end = stopOf(*moment, tracker.running() ? tracker.running()->start : end, tracker.time());
    }
    const std::optional<TimeEntryResponse> before = tracker.running();
    co_return answerTo(*context, co_await tracker.stop(end), "Stopped", before);
}

CommandTask continueLast(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    Tracker &tracker = (*opened)->tracker();
    const std::optional<TimeEntryResponse> before = tracker.running();
    const SaveResult result = co_await tracker.continueLast(nowFor(tracker));
    co_return withStopped(answerTo(*context, result, "Started"), *context, before);
}

} // namespace

void addTimerCommands(CommandTree &tree)
{
    const std::string group = "The timer";
    tree.onRun(&tree.root(), status);
    tree.onRun(tree.add("status", "Show the running timer and today's entries; so does orvane alone", group),
               status);

    const auto options = std::make_shared<EntryOptions>();
    CLI::App *startCommand =
        tree.add("start", "Start the timer, or record a finished entry when an end is named", group);
    CommandTree::addSentence(startCommand, "SENTENCE", options->sentence, "What the work is");
    addEntryOptions(startCommand, *options);
    tree.onRun(
        startCommand, [options](Context context) { return start(std::move(context), *options); },
        FailureForm::Outcome);

    const auto at = std::make_shared<std::optional<std::string>>();
    CLI::App *stopCommand = tree.add("stop", "Stop the timer", group);
    CommandTree::addText(stopCommand, "--at", *at, "TIME",
                         "When it ended: 930, 9:30, -15 for 15 minutes ago");
    tree.onRun(
        stopCommand, [at](Context context) { return stop(std::move(context), *at); }, FailureForm::Outcome);

    tree.onRun(tree.add("continue", "Start the timer with what the last entry said", group), continueLast,
               FailureForm::Outcome);
}

} // namespace orvane
