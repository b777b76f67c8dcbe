// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Commands/Confirmation.h"
#include "Commands/EntryAnswers.h"
#include "Output/EntryHints.h"
#include "Terminal/StandardStreams.h"
#include "Time/AppClock.h"

#include <algorithm>
#include <iterator>

namespace orvane {

namespace {

const std::string needsTimes =
    "An entry needs its time, as in: orvane add \"Stand-up 9:30-9:45\" or: orvane add \"Stand-up 15m\"";

struct EditOptions {
    std::string id;
    EntryOptions entry;
};

/// A finished entry as a sentence and options say it; without its times it is wrong usage.
Result<EntryDraft, CommandFailure> finishedDraft(const TypedSentence &typed, const EntryOptions &options,
                                                 const Tracker &tracker)
{
    if (auto wrong = misreadTime(typed, tracker, "recorded"))
        return failure(std::move(*wrong));
    auto draft = draftOf(typed, options, tracker);
    if (!draft)
        return draft;
    const auto times = draft->times(tracker.time(), AppClock::now());
    if (times ? !*times : times.error() == EntryTimesProblem::endWithoutStart)
        return failure(CommandFailure::usage(typed.withNotes(needsTimes, tracker)));
    return draft;
}

CommandTask add(Context context, EntryOptions options)
{
    if (options.isEmpty())
        co_return failure(CommandFailure::usage(needsTimes));
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    const TypedSentence typed = TypedSentence::read(options.sentence, **opened, options.literally);
    const auto draft = finishedDraft(typed, options, (*opened)->tracker());
    if (!draft)
        co_return failure(draft.error());
    co_return co_await record(context, options, typed, *draft);
}

/// What was typed on one line of standard input.
struct TypedLine {
    std::size_t number = 0;
    TypedSentence typed;
    EntryRequest request;
};

Result<EntryRequest, CommandFailure> requestOf(const TypedSentence &typed, const EntryOptions &options,
                                               const Tracker &tracker)
{
    const auto draft = finishedDraft(typed, options, tracker);
    if (!draft)
        return failure(draft.error());
    const auto whole = options.detailsIn(*draft, tracker.catalog());
    if (!whole)
        return failure(CommandFailure::of(whole.error()));
    const auto request = whole->request(tracker.time(), AppClock::now());
    if (!request)
        return failure(CommandFailure::of(timesText(request.error())));
    if (!(*request)->stop)
        return failure(CommandFailure::usage("It has no end; a timer is started with orvane start."));
    if (const auto refused = tracker.checkRules(**request))
        return failure(
            CommandFailure::of(refused->missing.empty()
                                   ? refused->message
                                   : refused->message + " It lacks " + missingText(refused->missing) + "."));
    return **request;
}

/// Every line as an entry, or what is wrong with those that make none.
Result<std::vector<TypedLine>, CommandFailure> linesOf(const std::vector<std::string> &texts,
                                                       const EntryOptions &options, const Account &account)
{
    std::vector<TypedLine> lines;
    std::string wrong;
    ExitStatus status = ExitStatus::failed;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        if (texts[i].find_first_not_of(" \t") == std::string::npos)
            continue;
        TypedSentence typed = TypedSentence::read(texts[i], account, options.literally);
        auto request = requestOf(typed, options, account.tracker());
        if (request) {
            lines.push_back({i + 1, std::move(typed), std::move(*request)});
        } else {
            wrong += "Line " + std::to_string(i + 1) + ": " + request.error().message + "\n";
            status = request.error().exitStatus;
        }
    }
    if (wrong.empty())
        return lines;
    CommandFailure failed = CommandFailure::of(wrong + "Nothing was recorded.");
    failed.exitStatus = status;
    return failure(std::move(failed));
}

CommandTask addLines(Context context, EntryOptions options)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    const std::vector<std::string> texts = readInputLines();
    co_await context->loadState();
    auto lines = linesOf(texts, options, **opened);
    if (!lines)
        co_return failure(lines.error());
    Tracker &tracker = (*opened)->tracker();
    std::vector<CommandAnswer> answers;
    std::vector<EntryTurn> turns;
    for (TypedLine &line : *lines) {
        const SaveResult result = co_await tracker.create(std::move(line.request));
        std::ranges::copy(result.turns, std::back_inserter(turns));
        answers.push_back(answerTo(*context, result, "Added", {}, line.typed.leftOut(tracker)));
        rememberPicks(*context, line.typed, answers.back());
    }
    co_await noteStep(context, {std::move(turns)});
    co_return together(*context, std::move(answers));
}

CommandTask addOrRead(Context context, EntryOptions options)
{
    return options.sentence == "-" ? addLines(std::move(context), std::move(options))
                                   : add(std::move(context), std::move(options));
}

/// Asks before an entry becomes longer than a day, which it was not before.
Result<void, CommandFailure> confirmLength(CommandContext &context, const TimeEntryResponse &before,
                                           const std::vector<EntryWarning> &warnings, bool isYes)
{
    const bool isLong = std::ranges::any_of(warnings, [](const EntryWarning &warning) {
        return warning.kind == EntryWarning::Kind::longerThanDay;
    });
    const bool wasLong = before.stop && *before.stop - before.start > EntryWarning::longestDay;
    if (!isLong || wasLong)
        return {};
    return confirm(context, "The entry would be longer than a day.", "Change it so?", isYes);
}

CommandTask edit(Context context, EditOptions options)
{
    if (options.entry.isEmpty())
        co_return failure(CommandFailure::usage("Name what to change; see: orvane edit --help"));
    const auto entry = co_await findEntry(context, options.id);
    if (!entry)
        co_return failure(entry.error());
    Tracker &tracker = context->account()->tracker();
    const TypedSentence typed =
        TypedSentence::read(options.entry.sentence, *context->account(), options.entry.literally);
    if (auto wrong = misreadChange(typed, tracker, "changed"))
        co_return failure(std::move(*wrong));
    const auto draft = draftOf(typed, options.entry, tracker, EntryDraft::of(*entry));
    if (!draft)
        co_return failure(draft.error());
    const auto times = draft->times(tracker.time(), AppClock::now());
    if (!times)
        co_return failure(CommandFailure::of(timesText(times.error())));
    const auto whole = options.entry.detailsIn(*draft, tracker.catalog());
    if (!whole)
        co_return failure(CommandFailure::of(whole.error()));
    const EntryTimes lies = times->value();
    std::vector<std::string> notes;
    if (lies != EntryTimes{entry->start, entry->stop}) {
        const auto warnings = co_await warningsOf(context, lies, entry->id);
        if (auto wanted = confirmLength(*context, *entry, warnings, options.entry.isYes); !wanted)
            co_return failure(wanted.error());
        notes = warningTexts(warnings, tracker.time());
    }
    std::ranges::move(typed.leftOut(tracker), std::back_inserter(notes));
    const SaveResult result = co_await tracker.update(entry->id, whole->at(lies));
    CommandAnswer answer = co_await conclude(context, result, "Changed", {}, notes);
    rememberPicks(*context, typed, answer);
    co_return answer;
}

CommandTask duplicate(Context context, std::string id)
{
    const auto entry = co_await findEntry(context, id);
    if (!entry)
        co_return failure(entry.error());
    const SaveResult result = co_await context->account()->tracker().duplicate(entry->id);
    co_return co_await conclude(context, result, "Copied");
}

/// How to make it again.
std::string wayBack(const CommandContext &context, const TimeEntryResponse &entry)
{
    const Tracker &tracker = context.account()->tracker();
    const std::string line = makingLine(entry, tracker.catalog(), tracker.time());
    return "  To make it again: orvane undo" + (line.empty() ? "" : ", or\n  " + line) + "\n";
}

CommandTask removeAll(Context context, std::vector<std::string> ids)
{
    // All are known before the first is deleted.
    std::vector<TimeEntryResponse> entries;
    for (const std::string &id : ids) {
        const auto entry = co_await findEntry(context, id);
        if (!entry)
            co_return failure(entry.error());
        if (std::ranges::find(entries, entry->id, &TimeEntryResponse::id) == entries.end())
            entries.push_back(*entry);
    }
    Tracker &tracker = context->account()->tracker();
    std::vector<CommandAnswer> answers;
    std::vector<EntryTurn> turns;
    for (const TimeEntryResponse &entry : entries) {
        const SaveResult result = co_await tracker.remove(entry.id);
        std::ranges::copy(result.turns, std::back_inserter(turns));
        answers.push_back(answerTo(*context, result, "Deleted", entry));
        if (answers.back().exitStatus == ExitStatus::done && !context->json())
            answers.back().output += wayBack(*context, entry);
    }
    co_await noteStep(context, {std::move(turns)});
    co_return ids.size() == 1 ? answers.front() : together(*context, std::move(answers));
}

const std::string idText = "The entry's identifier, a beginning of it that no other has, or \"last\"";

void addIdCommand(CommandTree &tree, const std::string &name, const std::string &description,
                  const std::string &group, CommandTask (*run)(Context, std::string))
{
    const auto id = std::make_shared<std::string>();
    CLI::App *command = tree.add(name, description, group);
    CommandTree::addRequired(command, "ID", *id, idText);
    tree.onRun(
        command, [id, run](Context context) { return run(std::move(context), *id); }, FailureForm::outcome);
}

} // namespace

void addEntryCommands(CommandTree &tree)
{
    const std::string group = "Entries";
    const auto added = std::make_shared<EntryOptions>();
    CLI::App *addCommand = tree.add("add", "Record a finished entry", group);
    CommandTree::addSentence(addCommand, "SENTENCE", added->sentence, sentenceText);
    addEntryOptions(addCommand, *added);
    CommandTree::addFooter(
        addCommand,
        "A time of day is today's. An end before its start is the next day's, up to 16 hours later; of such "
        "nights the nearest is meant. With - for the sentence, each line of standard input is one; all are "
        "checked before the first is recorded.");
    tree.onRun(
        addCommand, [added](Context context) { return addOrRead(std::move(context), *added); },
        FailureForm::outcome);

    const auto edited = std::make_shared<EditOptions>();
    CLI::App *editCommand = tree.add("edit", "Change an entry; what is not named stays as it is", group);
    CommandTree::addRequired(editCommand, "ID", edited->id, idText);
    CommandTree::addSentence(editCommand, "SENTENCE", edited->entry.sentence, sentenceText);
    addEntryOptions(editCommand, edited->entry);
    CommandTree::addFooter(
        editCommand,
        "A time of day is on the entry's own day, an end before its start on the next. Tags that are "
        "named replace the entry's.");
    CommandTree::addFlag(editCommand, "--yes", edited->entry.isYes, yesText);
    tree.onRun(
        editCommand, [edited](Context context) { return edit(std::move(context), *edited); },
        FailureForm::outcome);

    addIdCommand(tree, "duplicate", "Copy an entry", group, duplicate);

    const auto deleted = std::make_shared<std::vector<std::string>>();
    CLI::App *deleteCommand = tree.add("delete", "Delete entries; orvane undo brings them back", group);
    CommandTree::addWords(deleteCommand, "ID", *deleted, idText, true);
    tree.onRun(
        deleteCommand, [deleted](Context context) { return removeAll(std::move(context), *deleted); },
        FailureForm::outcome);
}

} // namespace orvane
