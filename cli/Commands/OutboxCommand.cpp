// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Commands/EntryAnswers.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Time/AppClock.h"

namespace orvane {

namespace {

/// The queue as it stands, and by the way what else waits on this computer.
Task<CommandAnswer> queueAnswer(Context context)
{
    const bool isMoreBeside = co_await context->lookBeside();
    const Outbox &outbox = context->account()->outbox();
    if (context->json())
        co_return CommandAnswer{
            .output = shapes::text(shapes::queuedChanges(
                outbox, context->unreadable(), context->account()->tracker().catalog(), AppClock::now()))};
    const bool isMore = isMoreBeside || !context->unreadable().empty();
    co_return CommandAnswer{.output =
                                EntryWriter(context->account()->tracker(), context->style())
                                    .queue(outbox.pending(), isMore ? "Nothing else is waiting to be sent."
                                                                    : "Nothing is waiting to be sent.")};
}

/// The list; a pass goes before it, since only the server tells which changes are in conflict.
CommandTask listQueue(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->flush();
    co_return co_await queueAnswer(context);
}

CommandTask flush(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    const auto before = static_cast<std::int64_t>((*opened)->outbox().pending().size());
    co_await context->flush();
    CommandAnswer answer = co_await queueAnswer(context);
    const auto after = static_cast<std::int64_t>((*opened)->outbox().pending().size());
    if (!context->json() && before > after)
        answer.output =
            "Sent " + counted(before - after, "change") + ".\n" + (after > 0 ? answer.output : std::string());
    co_return answer;
}

CommandTask settle(Context context, std::int64_t seq, Settlement settlement)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->flush();
    const Outbox &outbox = (*opened)->outbox();
    const auto row = std::ranges::find(outbox.pending(), seq, &Outbox::Pending::seq);
    const bool waits = row != outbox.pending().end();
    Result<std::optional<EntryStep>, StoreError> settled;
    if (waits && row->conflict)
        settled = co_await (*opened)->tracker().settle(seq, settlement, *row->conflict);
    if (!settled)
        co_return failure(CommandFailure::of(settled.error()));
    if (!*settled) {
        co_return failure(CommandFailure::of(
            !waits ? "No change with the number " + std::to_string(seq) + " is waiting."
            : (*opened)->isReachable()
                ? "The change " + std::to_string(seq) + " is in no conflict."
                : "Whether the change is in conflict is known only when the server answers."));
    }
    co_await noteStep(context, **settled);
    co_await context->flush();
    co_return co_await queueAnswer(context);
}

void addSide(CommandTree &tree, CLI::App *outbox, const char *name, const char *description,
             Settlement settlement)
{
    const auto seq = std::make_shared<std::int64_t>(0);
    CLI::App *command = CommandTree::addVerb(outbox, name, description);
    CommandTree::addRequired(command, "SEQ", *seq, "The change's number, as orvane outbox lists it");
    tree.onRun(command,
               [seq, settlement](Context context) { return settle(std::move(context), *seq, settlement); });
}

} // namespace

void addOutboxCommand(CommandTree &tree)
{
    CLI::App *outbox =
        tree.add("outbox", "List the changes that wait to be sent, and settle conflicts", "Entries");
    tree.onRun(outbox, listQueue);
    tree.onRun(CommandTree::addVerb(outbox, "flush", "Send what is waiting"), flush);
    addSide(tree, outbox, "keep-mine", "Settle a conflict: your change is made again", KeepMine{});
    addSide(tree, outbox, "keep-theirs", "Settle a conflict: your change is dropped", KeepTheirs{});
}

} // namespace orvane
