// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Client/OrvaneClient.h"
#include "CommandContext.h"
#include "Input/Candidates.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Terminal/TextTable.h"

#include <string>
#include <utility>
#include <vector>

/// What the commands of the catalog share: they change the workspace at the server and cannot wait in the
/// outbox.
namespace orvane {

/// The account, ready for a change that needs the server; a failure when the server is away.
Task<Result<Account *, CommandFailure>> openOnline(Context context);

/// One thing of the catalog as the server answered it, or the server's refusal. `line` is for people.
template <class T>
CommandTask answerWith(Context context, CallResult<T> result, std::string line)
{
    if (!result)
        co_return failure(CommandFailure::of(result.error()));
    // The snapshot learns of it, so that names can be given without the server too.
    co_await context->account()->tracker().reloadCatalog();
    co_return CommandAnswer{.output = context->json() ? shapes::text(*result) : line + "\n"};
}

/// A deletion: answers what is gone.
template <class T>
CommandTask answerWithout(Context context, CallResult<void> result, T gone, std::string line)
{
    if (!result)
        co_return failure(CommandFailure::of(result.error()));
    co_await context->account()->tracker().reloadCatalog();
    co_return CommandAnswer{.output = context->json() ? shapes::text(gone) : line + "\n"};
}

/// The item that a typed name or identifier means, out of those that the server just listed.
template <class T>
Result<T, CommandFailure> chosenOf(const CallResult<std::vector<T>> &items, std::string_view kind,
                                   const std::string &typed, const std::vector<Candidate> &candidates)
{
    if (!items)
        return failure(CommandFailure::of(items.error()));
    const auto found = choose(kind, typed, candidates);
    if (!found)
        return failure(CommandFailure::of(found.error()));
    return (*items)[*found];
}

} // namespace orvane
