// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"
#include "Input/TypedSentence.h"
#include "Tracker/Tracker.h"

#include <string>
#include <string_view>

/// What the commands that act on entries share.
namespace orvane {

/// Adds what people should know beside the answer.
void addNotes(CommandAnswer &answer, const std::vector<std::string> &notes);

/// The answer to a change of an entry. `verb` heads the line for people ("Started"); `before` is the entry to
/// show when the change left none; `notes` are told when the change was done, and to programs in any case.
CommandAnswer answerTo(const CommandContext &context, const SaveResult &result, std::string_view verb,
                       const std::optional<TimeEntryResponse> &before = {},
                       const std::vector<std::string> &notes = {});

/// The entry that a (cut) identifier means, in the account that this opens and brings up to date. Looks among
/// the entries of the last weeks, and asks the server for one that is older when the whole identifier was
/// typed.
Task<Result<TimeEntryResponse, CommandFailure>> findEntry(Context context, std::string typed);

/// What a SENTENCE argument is, for the help text.
inline constexpr const char *sentenceText =
    "What the work is, in one line: \"Fix the sync @api #review 9-10:30 $\"; see orvane help parse";

/// What a start or a stop without a time of its own meets: the running timer, the moment it was asked for,
/// and how long the command has waited since.
struct ActionMoment {
    enum class Kind {
        Free,
        /// Another device started the timer while this command waited.
        Overtaken,
        /// The timer begins only later; nothing can end or follow it yet.
        Ahead,
    };
    Kind kind = Kind::Free;
    /// When it happens: as asked, or when the timer begins that is just ahead. A clock that was set back a
    /// little is no reason to refuse what happens now.
    Instant at;

    static ActionMoment of(const std::optional<TimeEntryResponse> &running, Instant asked,
                           std::chrono::milliseconds waited);
    static ActionMoment of(const CommandContext &context);
    bool operator==(const ActionMoment &) const = default;
};

/// The answer to what the command itself refuses.
CommandAnswer refusal(const CommandContext &context, std::string message);
/// The same for a timer that begins only later, with the ways out.
CommandAnswer refusalAhead(const CommandContext &context, std::string_view what);

/// Records what a sentence and its options say: a finished entry when they name an end, else the timer
/// starts, now or when they say.
CommandTask record(Context context, EntryOptions options, TypedSentence typed, NamedTimes times);

/// The timer that a start stopped, in front of the answer to the start.
CommandAnswer withStopped(CommandAnswer answer, const CommandContext &context,
                          const std::optional<TimeEntryResponse> &before);

/// After a change that was done: what the sentence picked counts as used.
void rememberPicks(CommandContext &context, const TypedSentence &typed, const CommandAnswer &answer);

} // namespace orvane
