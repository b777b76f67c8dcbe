// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Commands/EntryAnswers.h"
#include "Time/AppClock.h"

namespace orvane {

namespace {

const std::string needsTimes =
    "An entry needs its time, as in: orvane add \"Stand-up 9:30-9:45\" or: orvane add \"Stand-up 15m\"";

struct EditOptions {
    std::string id;
    EntryOptions entry;
};

CommandTask add(Context context, EntryOptions options)
{
    if (options.isEmpty())
        co_return failure(CommandFailure::usage(needsTimes));
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->loadState();
    const TypedSentence typed = TypedSentence::read(options.sentence, **opened);
    const Tracker &tracker = (*opened)->tracker();
    const auto draft = draftOf(typed, options, tracker);
    if (!draft)
        co_return failure(draft.error());
    const auto times = draft->times(tracker.time(), AppClock::now());
    if (times ? !*times : times.error() == EntryTimesProblem::endWithoutStart)
        co_return failure(CommandFailure::usage(typed.withNotes(needsTimes, tracker.catalog())));
    co_return co_await record(context, options, typed, *draft);
}

CommandTask edit(Context context, EditOptions options)
{
    if (options.entry.isEmpty())
        co_return failure(CommandFailure::usage("Name what to change; see: orvane edit --help"));
    const auto entry = co_await findEntry(context, options.id);
    if (!entry)
        co_return failure(entry.error());
    Tracker &tracker = context->account()->tracker();
    const TypedSentence typed = TypedSentence::read(options.entry.sentence, *context->account());
    const auto draft = draftOf(typed, options.entry, tracker, EntryDraft::of(*entry));
    if (!draft)
        co_return failure(draft.error());
    if (const auto times = draft->times(tracker.time(), AppClock::now()); !times)
        co_return failure(CommandFailure::of(timesText(times.error())));
    const auto whole = options.entry.detailsIn(*draft, tracker.catalog());
    if (!whole)
        co_return failure(CommandFailure::of(whole.error()));
    // Its times are those that were looked at above.
    auto request = whole->request(tracker.time(), AppClock::now()).value().value();
    CommandAnswer answer = answerTo(*context, co_await tracker.update(entry->id, std::move(request)),
                                    "Changed", {}, typed.leftOut(tracker.catalog()));
    rememberPicks(*context, typed, answer);
    co_return answer;
}

CommandTask duplicate(Context context, std::string id)
{
    const auto entry = co_await findEntry(context, id);
    if (!entry)
        co_return failure(entry.error());
    co_return answerTo(*context, co_await context->account()->tracker().duplicate(entry->id), "Copied");
}

CommandTask remove(Context context, std::string id)
{
    const auto entry = co_await findEntry(context, id);
    if (!entry)
        co_return failure(entry.error());
    co_return answerTo(*context, co_await context->account()->tracker().remove(entry->id), "Deleted", *entry);
}

const std::string idText = "The entry's identifier, or a beginning of it that no other has";

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
        "A time of day is today's; an end before its start means that the entry began the day before.");
    tree.onRun(
        addCommand, [added](Context context) { return add(std::move(context), *added); },
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
    tree.onRun(
        editCommand, [edited](Context context) { return edit(std::move(context), *edited); },
        FailureForm::outcome);

    addIdCommand(tree, "duplicate", "Copy an entry", group, duplicate);
    addIdCommand(tree, "delete", "Delete an entry", group, remove);
}

} // namespace orvane
