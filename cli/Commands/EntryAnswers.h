// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"
#include "Tracker/Tracker.h"

#include <string>
#include <string_view>

/// What the commands that act on entries share.
namespace orvane {

/// The answer to a change of an entry. `verb` heads the line for people ("Started"); `before` is the entry to
/// show when the change left none.
CommandAnswer answerTo(const CommandContext &context, const SaveResult &result, std::string_view verb,
                       const std::optional<TimeEntryResponse> &before = {});

/// The entry that a (cut) identifier means. Looks among the entries of the last weeks, and asks the server
/// for one that is older when the whole identifier was typed.
Task<Result<TimeEntryResponse, CommandFailure>> findEntry(Context context, std::string typed);

} // namespace orvane
