// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandTree.h"
#include "Commands/Commands.h"
#include "Commands/EntryAnswers.h"
#include "Output/EntryText.h"

#include <ranges>

namespace orvane {

namespace {

/// Makes the entries of a step known that lie on days beside the loaded ones.
Task<> loadDaysOf(Context context, EntryStep step)
{
    Account &account = *context->account();
    Tracker &tracker = account.tracker();
    for (const EntryTurn &turn : step.turns) {
        if (turn.after && !tracker.entry(turn.id()) && account.isReachable())
            co_await tracker.loadDays(tracker.time().dayKey(turn.after->start), 1);
    }
}

/// Under which identifiers deleted entries came back: the changes were taken back in the other order.
std::vector<std::pair<std::string, std::string>> renamedBy(const EntryStep &step,
                                                           const std::vector<EntryTurn> &made)
{
    std::vector<std::pair<std::string, std::string>> renamed;
    std::size_t i = 0;
    for (const EntryTurn &turn : step.turns | std::views::reverse) {
        if (i == made.size())
            break;
        if (!turn.after)
            renamed.emplace_back(turn.id(), made[i].id());
        ++i;
    }
    return renamed;
}

std::string linesOf(const CommandContext &context, const std::vector<EntryTurn> &turns)
{
    const EntryWriter writer(context.account()->tracker(), context.style());
    std::string lines;
    for (const EntryTurn &turn : turns) {
        const std::string_view verb = !turn.after ? "Removed" : turn.before ? "Put back" : "Made again";
        lines += writer.done(verb, turn.after ? *turn.after : *turn.before);
    }
    return lines;
}

CommandTask undo(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    EntryHistory history = (*opened)->history();
    const auto step = co_await history.last();
    if (!step)
        co_return failure(CommandFailure::of("There is nothing to take back."));
    co_await loadDaysOf(context, *step);
    SaveResult result = co_await (*opened)->tracker().takeBack(*step);
    const bool isRefusedHere = result.outcome == SaveOutcome::rejected && !result.error;
    // What can never be taken back is not to stand before what can.
    if (isRefusedHere || !result.turns.empty())
        co_await history.forget(*step, renamedBy(*step, result.turns));
    if (isRefusedHere)
        result.message += " What was done before it: orvane undo";
    CommandAnswer answer = answerTo(*context, result, "");
    if (!context->json() && answer.exitStatus == ExitStatus::done)
        answer.output = linesOf(*context, result.turns);
    co_return answer;
}

} // namespace

void addUndoCommand(CommandTree &tree)
{
    tree.onRun(tree.add("undo", "Take the last command's change of entries back", "Entries"), undo,
               FailureForm::outcome);
}

} // namespace orvane
