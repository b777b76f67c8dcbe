// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandTree.h"
#include "Commands/Commands.h"
#include "Commands/EntryAnswers.h"
#include "Output/EntryText.h"
#include "Proposals/AgentProposals.h"

namespace orvane {

namespace {

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

/// Of an applied proposal, as the server takes it back: its entry is as it was, and the proposal waits again.
CommandTask reopenProposal(Context context, EntryHistory history, EntryStep step)
{
    Account &account = *context->account();
    const auto reopened = co_await account.proposals().reopen(*step.proposalId);
    if (!reopened) {
        const auto *refusal = std::get_if<APIError>(&reopened.error());
        const bool isForGood = refusal != nullptr && (refusal->status == 404 || refusal->status == 409);
        // What can never be taken back is not to stand before what can.
        if (isForGood)
            co_await history.forget(step, {});
        co_return failure(CommandFailure::of(reopened.error(),
                                             proposalFailure(reopened.error()) +
                                                 (isForGood ? " What was done before it: orvane undo" : "")));
    }
    co_await history.forget(step, {});
    SaveResult result;
    result.outcome = SaveOutcome::saved;
    for (EntryTurn &turn : step.turns) {
        std::swap(turn.before, turn.after);
        result.entry = turn.after;
    }
    result.turns = std::move(step.turns);
    CommandAnswer answer = answerTo(*context, result, "");
    if (!context->json())
        answer.output = linesOf(*context, result.turns) + "The proposal waits again.\n";
    co_return answer;
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
    if (step->proposalId)
        co_return co_await reopenProposal(context, history, *step);
    if ((*opened)->isReachable())
        co_await (*opened)->tracker().loadDaysOf(*step);
    SaveResult result = co_await (*opened)->tracker().takeBack(*step);
    const bool isRefusedHere = result.outcome == SaveOutcome::rejected && !result.error;
    // What can never be taken back is not to stand before what can.
    if (isRefusedHere || !result.turns.empty())
        co_await history.forget(*step, result.renamed);
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
