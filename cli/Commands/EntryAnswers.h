// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "CommandContext.h"
#include "EntryInput/EntryWarning.h"
#include "Input/EntryOptions.h"
#include "Input/TypedSentence.h"
#include "Tracker/ActionMoment.h"
#include "Tracker/Tracker.h"

#include <string>
#include <string_view>

namespace CLI {
class App;
}

/// What the commands that act on entries share.
namespace orvane {

/// Adds what people should know beside the answer.
void addNotes(CommandAnswer &answer, const std::vector<std::string> &notes);

/// The answer to a change of an entry. `verb` heads the line for people ("Started"); `before` is the entry to
/// show when the change left none; `notes` are told when the change was done, and to programs in any case.
CommandAnswer answerTo(const CommandContext &context, const SaveResult &result, std::string_view verb,
                       const std::optional<TimeEntryResponse> &before = {},
                       const std::vector<std::string> &notes = {});

/// The same, once the change is noted for `orvane undo`.
Task<CommandAnswer> conclude(Context context, SaveResult result, std::string verb,
                             std::optional<TimeEntryResponse> before = {},
                             std::vector<std::string> notes = {});
/// Keeps what an action changed, so that it can be taken back.
Task<> noteStep(Context context, EntryStep step);

/// The answers to several changes as one: below each other, for programs as a list.
CommandAnswer together(const CommandContext &context, std::vector<CommandAnswer> answers);

/// The entry that a (cut) identifier means, or of "last" the one that began last, in the account that this
/// opens and brings up to date. Looks among the entries of the last weeks, and asks the server for one that
/// is older when the whole identifier was typed.
Task<Result<TimeEntryResponse, CommandFailure>> findEntry(Context context, std::string typed);

/// What a SENTENCE argument is, for the help text.
inline constexpr const char *sentenceText =
    "What the work is, in one line: \"Fix the sync @api #review 9-10:30 $\"; see orvane help parse";

/// Adds the options that say what an entry is to a command, with its times or without; `options` outlives the
/// tree's use.
void addEntryOptions(CLI::App *command, EntryOptions &options, bool withTimes = true);

/// When the command's start or stop happens.
ActionMoment actionMoment(const CommandContext &context);

/// The answer to what the command itself refuses.
CommandAnswer refusal(const CommandContext &context, std::string message);
/// The same for a timer that begins only later, with the ways out.
CommandAnswer refusalAhead(const CommandContext &context, std::string_view what);

/// The draft with what a sentence says and the times that options name; of the options' other words see
/// `EntryOptions::detailsIn`. A text that is no time is wrong usage.
Result<EntryDraft, CommandFailure> draftOf(const TypedSentence &typed, const EntryOptions &options,
                                           const Tracker &tracker, EntryDraft draft = {});

/// The refusal of a sentence in which a time was typed and not read. `verb` says what was not done:
/// "recorded".
std::optional<CommandFailure> misreadTime(const TypedSentence &typed, const Tracker &tracker,
                                          std::string_view verb);
/// The same for a sentence that would take the place of what an entry says: none of it was understood.
std::optional<CommandFailure> misreadChange(const TypedSentence &typed, const Tracker &tracker,
                                            std::string_view verb);

/// What is unusual about when an entry would lie, among those of its days, which are asked for when they are
/// not known.
Task<std::vector<EntryWarning>> warningsOf(Context context, EntryTimes times, std::string id);

/// Records what a sentence and its options say: a finished entry when they name an end, else the timer
/// starts, now or when they say. The draft has all of it but the options' details, which are looked up here;
/// that the sentence's time was read is for the caller to see.
CommandTask record(Context context, EntryOptions options, TypedSentence typed, EntryDraft draft);

/// The timer that a start stopped, in front of the answer to the start.
CommandAnswer withStopped(CommandAnswer answer, const CommandContext &context,
                          const std::optional<TimeEntryResponse> &before);

/// What the sentence picked counts as used, after a change that was done.
void rememberPicks(CommandContext &context, const TypedSentence &typed, const CommandAnswer &answer);

} // namespace orvane
