// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "CommandTree.h"
#include "Commands/EntryAnswers.h"
#include "Input/TypedSentence.h"
#include "Output/QuickEntryShapes.h"
#include "Terminal/TextTable.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"

#include <QString>

namespace orvane {

namespace {

/// Rows that people are shown; programs get all.
constexpr std::size_t shownRows = 20;

TextCell nameOf(const std::string &id, const auto *item)
{
    return item == nullptr ? TextCell(id) : TextCell(printable(item->name));
}

/// "Wed, 4 Mar, 09:00 – 10:30, 1:30:00", or where it begins alone.
std::string spanText(const EntrySentence::Span &span, const UserTime &time)
{
    const std::string start = time.dayLabel(time.dayKey(span.start)) + ", " + time.timeLabel(span.start);
    if (!span.stop)
        return start + " – now";
    const bool isOneDay = time.dayKey(span.start) == time.dayKey(*span.stop);
    return start + " – " + (isOneDay ? "" : time.dayLabel(time.dayKey(*span.stop)) + ", ") +
           time.timeLabel(*span.stop) + "  " + time.duration(secondsBetween(span.start, *span.stop));
}

/// What was understood, a line for each part.
std::string explained(const TypedSentence &typed, const Tracker &tracker, const TerminalStyle &style)
{
    const EntrySentence::Reading &reading = typed.reading;
    const Catalog &catalog = tracker.catalog();
    TextTable table({{}, {.shrinksTo = 12, .wraps = true}});
    const auto add = [&table](const char *what, TextCell cell) {
        table.add({TextCell(what, quiet), std::move(cell)});
    };
    add("Description",
        reading.description.empty() ? TextCell("none", quiet) : TextCell(printable(reading.description)));
    if (reading.projectID)
        add("Project", nameOf(*reading.projectID, catalog.project(*reading.projectID)));
    if (reading.taskID)
        add("Task", nameOf(*reading.taskID, catalog.task(*reading.taskID)));
    if (reading.clientID)
        add("Client", nameOf(*reading.clientID, catalog.client(*reading.clientID)));
    for (const std::string &tag : reading.tagIDs)
        add("Tag", nameOf(tag, catalog.tag(tag)));
    if (reading.isBillable)
        add("Billable", TextCell("yes"));
    for (const UnreadMention &mention : reading.unreadMentions)
        add("Unknown", TextCell(printable(mention.text)));
    if (typed.span) {
        TextCell cell(spanText(*typed.span, tracker.time()));
        cell.runs.push_back({"  from \"" + printable(reading.timeText) + "\"", quiet});
        add("Time", std::move(cell));
    }
    return table.render(style);
}

CommandTask parse(Context context, std::string sentence)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    const TypedSentence typed = TypedSentence::read(sentence, **opened);
    const Tracker &tracker = (*opened)->tracker();
    const std::vector<std::string> notes = typed.leftOut(tracker);
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(shapes::sentence(typed.reading, typed.span, notes))};
    CommandAnswer answer{.output = explained(typed, tracker, context->style())};
    addNotes(answer, notes);
    co_return answer;
}

Palette paletteOf(const Tracker &tracker)
{
    const Catalog &catalog = tracker.catalog();
    std::vector<PaletteItem> items =
        PaletteItem::ofCatalog(catalog.projects(), catalog.clients(), catalog.tags());
    std::vector<PaletteItem> recent =
        PaletteItem::ofRecent(tracker.entries(), catalog.projects(), catalog.clients(), catalog.tags());
    items.insert(items.end(), std::move_iterator(recent.begin()), std::move_iterator(recent.end()));
    return Palette(std::move(items));
}

/// The name with what matched standing out.
TextCell highlighted(const std::string &name, const std::vector<TextRange> &ranges)
{
    const QString whole = QString::fromStdString(name);
    TextCell cell;
    qsizetype at = 0;
    const auto add = [&](qsizetype end, TextStyle style) {
        if (end > at)
            cell.runs.push_back({printable(whole.sliced(at, end - at).toStdString()), style});
        at = std::max(at, end);
    };
    for (const TextRange &range : ranges) {
        add(std::min(static_cast<qsizetype>(range.start), whole.size()), {});
        add(std::min(static_cast<qsizetype>(range.end), whole.size()), strong);
    }
    add(whole.size(), {});
    return cell;
}

std::string foundTable(const Palette &palette, const std::vector<Palette::Found> &found,
                       const TerminalStyle &style)
{
    TextTable table({{}, {.shrinksTo = 12, .wraps = true}, {.shrinksTo = 8, .wraps = true}});
    for (const Palette::Found &row : std::span(found).first(std::min(found.size(), shownRows))) {
        const PaletteItem &item = palette.items()[row.item];
        std::string about;
        for (const std::string &alternative : item.alternatives)
            about += (about.empty() ? "" : " · ") + printable(alternative);
        table.add({TextCell(std::string(shapes::kindText(item.kind)), quiet),
                   highlighted(item.name, row.match.ranges), TextCell(about, quiet)});
    }
    std::string out = table.render(style);
    if (found.size() > shownRows)
        out += style.apply("  and " + std::to_string(found.size() - shownRows) + " more", quiet) + "\n";
    return out;
}

CommandTask find(Context context, std::string query)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    co_await context->bringUpToDate();
    const Tracker &tracker = (*opened)->tracker();
    const Palette palette = paletteOf(tracker);
    const PaletteUsage usage = context->installation().paletteUsage(tracker.workspace().id);
    const std::vector<Palette::Found> found = palette.find(query, usage, AppClock::now());
    if (context->json()) {
        std::vector<shapes::PaletteRow> rows;
        rows.reserve(found.size());
        for (const Palette::Found &row : found)
            rows.push_back(shapes::paletteRow(palette.items()[row.item], row.match));
        co_return CommandAnswer{.output = shapes::text(rows)};
    }
    if (palette.items().empty())
        co_return CommandAnswer{
            .output = "There is nothing to find yet. Make a project with: orvane projects add \"Website\"\n"};
    if (found.empty())
        co_return CommandAnswer{.output = "Nothing here is called \"" + printable(query) + "\".\n"};
    co_return CommandAnswer{.output = foundTable(palette, found, context->style())};
}

} // namespace

void addQuickEntryCommands(CommandTree &tree)
{
    const std::string group = "Entries";
    const auto sentence = std::make_shared<std::optional<std::string>>();
    CLI::App *parseCommand = tree.add("parse", "Say what a sentence means, without doing it", group);
    CommandTree::addSentence(parseCommand, "SENTENCE", *sentence, "One line, as start and add take it", true);
    CommandTree::addFooter(
        parseCommand, "@ names a project, a task or a client (@web, @web/design, @big-project), # a tag, "
                      "$ says billable. The time is "
                      "the end of the line: 9-10:30, from 9 to 10:30, since 9:40, 45m ago, for 1h30, 90m; "
                      "with a day before or after "
                      "it: yesterday, mon, 2026-03-04. What is not understood stays in the description. "
                      "In a shell, quote the line: "
                      "# and $ mean something to it.");
    tree.onRun(parseCommand, [sentence](Context context) {
        return parse(std::move(context), sentence->value_or(std::string()));
    });

    const auto query = std::make_shared<std::optional<std::string>>();
    CLI::App *findCommand =
        tree.add("find", "Find projects, tasks, clients, tags and recent entries by a few letters", group);
    CommandTree::addSentence(findCommand, "QUERY", *query, "The beginnings or initials of words", true);
    tree.onRun(findCommand,
               [query](Context context) { return find(std::move(context), query->value_or(std::string())); });
}

} // namespace orvane
