// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Commands/CatalogAnswers.h"
#include "Tracker/CatalogUse.h"

#include <string>

/// Deleting a thing that entries are on: what goes with it is said first.
namespace orvane {

struct CatalogDeletion {
    CatalogItem item;
    std::string name;
    /// What else is lost, as a sentence; may be empty.
    std::string alsoLost = {};
    /// The command that puts it out of the way without loss; empty when there is none.
    std::string instead = {};
    bool isYes = false; ///< the user's --yes
};

/// Tells what hangs on it and asks; with --yes neither. The account is open.
Task<Result<void, CommandFailure>> confirmDeletion(Context context, CatalogDeletion deletion);

/// Why the server did not delete it, with the way around where the workspace's rules are the reason.
CommandFailure deletionFailure(const CallError &error, const CatalogDeletion &deletion);

/// The answer to what the server said of it: what is gone, or the failure.
template <class T>
CommandResult answerDeletion(const CommandContext &context, const CallResult<void> &result, const T &gone,
                             const CatalogDeletion &deletion, const std::string &line)
{
    if (!result)
        return failure(deletionFailure(result.error(), deletion));
    return answerWithout(context, result, gone, line);
}

} // namespace orvane
