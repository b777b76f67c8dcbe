// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/NameLookup.h"
#include "CommandTree.h"
#include "Commands/CatalogAnswers.h"
#include "Commands/Commands.h"
#include "Commands/EntryAnswers.h"
#include "Output/ProposalList.h"
#include "Proposals/AgentProposals.h"
#include "Proposals/ProposalText.h"

namespace orvane {

namespace {

/// The account with what waits in the terminal's own queue sent, and the proposals as the server has them.
Task<Result<Account *, CommandFailure>> openProposals(Context context)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    const AccountState &state = (*opened)->state();
    if (!state.isReachable())
        co_return failure(CommandFailure::of(
            (state.isTurnedAway() ? ""
                                  : "What agents proposed is kept by the server, which cannot be reached. ") +
            state.reason()));
    co_await context->bringUpToDate();
    const auto loaded = co_await (*opened)->proposals().load();
    if (!loaded)
        co_return failure(CommandFailure::of(loaded.error(), proposalFailure(loaded.error())));
    co_return *opened;
}

CommandTask listProposals(Context context)
{
    const auto opened = co_await openProposals(context);
    if (!opened)
        co_return failure(opened.error());
    AgentProposals &proposals = (*opened)->proposals();
    if (context->json())
        co_return CommandAnswer{
            .output = shapes::text(AgentProposalsResponse{proposals.proposals(), proposals.pendingCount()})};
    const std::vector<AgentProposalResponse> waiting = proposals.pending();
    if (waiting.empty())
        co_return CommandAnswer{.output =
                                    "No proposals are waiting. An agent makes them once it is connected: "
                                    "orvane connect claude\n"};
    const std::string id = shortProposalId(waiting, waiting.front().id);
    co_return CommandAnswer{
        .output = proposalList(waiting, (*opened)->tracker().catalog(), (*opened)->time(), context->style()),
        .messages = {"To settle one: orvane proposals apply " + id + ", or: orvane proposals refuse " + id}};
}

/// The waiting proposal that a (cut) identifier means.
Result<AgentProposalResponse, CommandFailure> waitingOne(const AgentProposals &proposals,
                                                         const std::string &typed)
{
    const std::vector<AgentProposalResponse> waiting = proposals.pending();
    std::vector<std::string> ids;
    ids.reserve(waiting.size());
    for (const AgentProposalResponse &proposal : waiting)
        ids.push_back(proposal.id);
    const auto id = lookUpId(typed, ids);
    if (id)
        return *proposals.find(*id);
    if (id.error().isAmbiguous())
        return failure(CommandFailure::of(lookupText("proposal", typed, id.error())));
    return failure(CommandFailure::of("No proposal that waits has the ID " + printable(typed) +
                                      ". Those that wait: orvane proposals"));
}

/// What was not accepted is not to be met again each time.
CommandFailure refusedApplying(const CallError &error, const std::string &id)
{
    const auto *refusal = std::get_if<APIError>(&error);
    const bool isForGood = refusal != nullptr && refusal->status == 409;
    return CommandFailure::of(error, proposalFailure(error) +
                                         (isForGood ? " To put it away: orvane proposals refuse " + id : ""));
}

CommandTask applyProposal(Context context, std::string typed)
{
    const auto opened = co_await openProposals(context);
    if (!opened)
        co_return failure(opened.error());
    AgentProposals &proposals = (*opened)->proposals();
    const auto chosen = waitingOne(proposals, typed);
    if (!chosen)
        co_return failure(chosen.error());
    const std::string shortId = shortProposalId(proposals.pending(), chosen->id);
    const auto applied = co_await proposals.apply(chosen->id);
    if (!applied)
        co_return failure(refusedApplying(applied.error(), shortId));
    EntryTurn turn{entryBefore(applied->proposal), {}};
    if (!applied->entries.empty())
        turn.after = applied->entries.front();
    co_await noteStep(context, {{turn}, applied->proposal.id});
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(*applied)};
    const EntryWriter writer((*opened)->tracker(), context->style());
    co_return CommandAnswer{.output = turn.after ? writer.done("Applied", *turn.after)
                                                 : writer.done("Deleted", turn.before.value())};
}

CommandTask refuseProposal(Context context, std::string typed)
{
    const auto opened = co_await openProposals(context);
    if (!opened)
        co_return failure(opened.error());
    AgentProposals &proposals = (*opened)->proposals();
    const auto chosen = waitingOne(proposals, typed);
    if (!chosen)
        co_return failure(chosen.error());
    const auto refused = co_await proposals.dismiss(chosen->id);
    if (!refused)
        co_return failure(CommandFailure::of(refused.error(), proposalFailure(refused.error())));
    co_return answerWith(*context, refused,
                         "Refused what " + printable(refused->agentName) + " proposed for " +
                             printable(proposedEntry(*refused)));
}

void addAnswer(CommandTree &tree, CLI::App *proposals, const char *name, const char *description,
               CommandTask (*answer)(Context, std::string))
{
    const auto id = std::make_shared<std::string>();
    CLI::App *command = CommandTree::addVerb(proposals, name, description);
    CommandTree::addRequired(command, "ID", *id, "The proposal's ID, or a unique beginning of it");
    tree.onRun(command, [id, answer](Context context) { return answer(std::move(context), *id); });
}

} // namespace

void addProposalCommand(CommandTree &tree)
{
    CLI::App *proposals = tree.add("proposals", "List what agents proposed, and settle it", "Entries");
    tree.onRun(proposals, listProposals);
    addAnswer(tree, proposals, "apply", "Carry a proposal out; orvane undo takes that back", applyProposal);
    addAnswer(tree, proposals, "refuse", "Put a proposal away; your entries stay as they are",
              refuseProposal);
}

} // namespace orvane
