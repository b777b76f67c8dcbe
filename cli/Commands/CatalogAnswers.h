// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/CatalogLookup.h"
#include "Client/OrvaneClient.h"
#include "CommandContext.h"
#include "Input/LookupText.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Terminal/TextTable.h"
#include "Terminal/TextWidth.h"
#include "Tracker/CatalogEditor.h"

#include <string>
#include <utility>
#include <vector>

/// What the commands of the catalog share: they change the workspace at the server and cannot wait in the
/// outbox.
namespace orvane {

/// The account, ready for a change that needs the server; a failure when the server is away.
Task<Result<Account *, CommandFailure>> openOnline(Context context);

/// The project that a typed name or identifier means, out of those that the server lists now.
Task<Result<ProjectResponse, CommandFailure>> projectOf(Context context, std::string typed,
                                                        LookupPurpose purpose);

/// The editor of the account's workspace.
inline CatalogEditor catalogEditor(Account &account)
{
    return {account.client(), account.tracker()};
}

/// One thing of the catalog as the server answered it, or the server's refusal. `line` is for people.
template <class T>
CommandResult answerWith(const CommandContext &context, const CallResult<T> &result, const std::string &line)
{
    if (!result)
        return failure(CommandFailure::of(result.error()));
    return CommandAnswer{.output = context.json() ? shapes::text(*result) : line + "\n"};
}

/// One that was made; `what` names it for people ("the client").
template <class T>
CommandResult answerMade(const CommandContext &context, const CallResult<T> &made, const std::string &what)
{
    return answerWith(context, made,
                      made ? "Added " + what + " " + printable(made->name) + "  " + made->id.substr(0, 8)
                           : std::string());
}

/// A deletion: answers what is gone.
template <class T>
CommandResult answerWithout(const CommandContext &context, const CallResult<void> &result, const T &gone,
                            const std::string &line)
{
    if (!result)
        return failure(CommandFailure::of(result.error()));
    return CommandAnswer{.output = context.json() ? shapes::text(gone) : line + "\n"};
}

/// The item that a typed name or identifier means, out of those that the server just listed.
template <class T>
Result<T, CommandFailure> chosenOf(const CallResult<std::vector<T>> &items, std::string_view kind,
                                   const std::string &typed, const std::vector<NamedItem> &named,
                                   LookupPurpose purpose)
{
    if (!items)
        return failure(CommandFailure::of(items.error()));
    const auto found = choose(kind, typed, named, purpose);
    if (!found)
        return failure(CommandFailure::of(found.error()));
    return (*items)[*found];
}

} // namespace orvane
