// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Catalog/EntryConversions.h"
#include "CommandTree.h"
#include "Commands/EntryAnswers.h"
#include "Input/EntryOptions.h"

namespace orvane {

namespace {

struct EditOptions {
    std::string id;
    EntryOptions entry;
};

CommandTask add(Context context, EntryOptions options)
{
    if (!options.start || !options.stop)
        co_return failure(CommandFailure::usage(
            "An entry needs its times, as in: orvane add \"Stand-up\" --start 9:30 --stop 9:45"));
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    Tracker &tracker = (*opened)->tracker();
    const auto times = namedTimes(options, tracker.time());
    if (!times)
        co_return failure(times.error());
    const auto span = spanOf(*times->start, *times->stop, tracker.time());
    if (!span)
        co_return failure(CommandFailure::of(span.error()));
    auto details = withOptions({}, options, tracker.catalog());
    if (!details)
        co_return failure(details.error());
    EntryRequest request{.details = std::move(*details), .start = span->start, .stop = span->stop};
    co_return answerTo(*context, co_await tracker.create(std::move(request)), "Added");
}

CommandTask edit(Context context, EditOptions options)
{
    if (options.entry.isEmpty())
        co_return failure(CommandFailure::usage("Name what to change; see: orvane edit --help"));
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    Tracker &tracker = (*opened)->tracker();
    const auto entry = co_await findEntry(context, options.id);
    if (!entry)
        co_return failure(entry.error());
    EntryRequest request = entryRequest(*entry);
    const auto named = namedTimes(options.entry, tracker.time());
    if (!named)
        co_return failure(named.error());
    const auto times = editedTimes({request.start, request.stop}, named->start, named->stop, tracker.time());
    if (!times)
        co_return failure(CommandFailure::of(times.error()));
    auto details = withOptions(request.details, options.entry, tracker.catalog());
    if (!details)
        co_return failure(details.error());
    request.describeParts = request.describeParts && !details->shares.empty();
    request.details = std::move(*details);
    request.start = times->start;
    request.stop = times->stop;
    co_return answerTo(*context, co_await tracker.update(entry->id, std::move(request)), "Changed");
}

CommandTask duplicate(Context context, std::string id)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    const auto entry = co_await findEntry(context, id);
    if (!entry)
        co_return failure(entry.error());
    co_return answerTo(*context, co_await (*opened)->tracker().duplicate(entry->id), "Copied");
}

CommandTask remove(Context context, std::string id)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    const auto entry = co_await findEntry(context, id);
    if (!entry)
        co_return failure(entry.error());
    co_return answerTo(*context, co_await (*opened)->tracker().remove(entry->id), "Deleted", *entry);
}

const std::string idText = "The entry's identifier, or a beginning of it that no other has";

void addIdCommand(CommandTree &tree, const std::string &name, const std::string &description,
                  const std::string &group, CommandTask (*run)(Context, std::string))
{
    const auto id = std::make_shared<std::string>();
    CLI::App *command = tree.add(name, description, group);
    CommandTree::addRequired(command, "ID", *id, idText);
    tree.onRun(
        command, [id, run](Context context) { return run(std::move(context), *id); }, FailureForm::Outcome);
}

} // namespace

void addEntryCommands(CommandTree &tree)
{
    const std::string group = "Entries";
    const auto added = std::make_shared<EntryOptions>();
    CLI::App *addCommand = tree.add("add", "Record a finished entry", group);
    CommandTree::addSentence(addCommand, "SENTENCE", added->sentence, "What the work is");
    addEntryOptions(addCommand, *added);
    addCommand->footer(
        addCommand->get_footer() +
        " A time of day is today's; an end before its start means that the entry began the day before.");
    tree.onRun(
        addCommand, [added](Context context) { return add(std::move(context), *added); },
        FailureForm::Outcome);

    const auto edited = std::make_shared<EditOptions>();
    CLI::App *editCommand = tree.add("edit", "Change an entry; what is not named stays as it is", group);
    CommandTree::addRequired(editCommand, "ID", edited->id, idText);
    CommandTree::addSentence(editCommand, "SENTENCE", edited->entry.sentence, "What the work is");
    addEntryOptions(editCommand, edited->entry);
    editCommand->footer(
        editCommand->get_footer() +
        " A time of day is on the entry's own day, an end before its start on the next. Tags that are "
        "named replace the entry's.");
    tree.onRun(
        editCommand, [edited](Context context) { return edit(std::move(context), *edited); },
        FailureForm::Outcome);

    addIdCommand(tree, "duplicate", "Copy an entry", group, duplicate);
    addIdCommand(tree, "delete", "Delete an entry", group, remove);
}

} // namespace orvane
