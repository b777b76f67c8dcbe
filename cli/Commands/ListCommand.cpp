// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Catalog/CatalogLookup.h"
#include "Catalog/EntryDays.h"
#include "CommandTree.h"
#include "Input/DayRange.h"
#include "Input/LookupText.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Output/ReportText.h"
#include "Output/WeekCalendar.h"
#include "Report/AskedEntries.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"
#include "Time/DayFigures.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>

namespace orvane {

namespace {

struct ListOptions {
    DayRangeOptions days;
    std::optional<std::string> client;
    std::optional<std::string> project;
    std::optional<std::string> tag;
    std::optional<std::string> by;
};

/// What a list is made of.
struct Listed {
    DayRange range;
    EntryFilter filter;
    /// Every day of the range, with what the filter takes.
    std::vector<DayGroup> days;
    /// For a picture, newest start first: with what begins on the evening before.
    std::vector<TimeEntryResponse> drawn;

    static Listed of(std::span<const TimeEntryResponse> newestFirst, const DayRange &range,
                     const EntryFilter &filter, const Tracker &tracker, bool isPicture)
    {
        Listed listed{range, filter, entryDays(newestFirst, tracker.time(), range.first, range.count), {}};
        for (DayGroup &day : listed.days)
            day.entries = filter.entriesOf(std::move(day.entries), tracker.catalog());
        if (isPicture)
            listed.drawn = filter.entriesOf({newestFirst.begin(), newestFirst.end()}, tracker.catalog());
        return listed;
    }
};

Result<std::optional<EntryGrouping>, CommandFailure> groupingOf(const std::optional<std::string> &typed)
{
    static constexpr std::array groupings{std::pair{std::string_view("project"), EntryGrouping::project},
                                          std::pair{std::string_view("client"), EntryGrouping::client},
                                          std::pair{std::string_view("task"), EntryGrouping::task},
                                          std::pair{std::string_view("tag"), EntryGrouping::tag}};
    if (!typed)
        return std::optional<EntryGrouping>();
    for (const auto &[name, grouping] : groupings) {
        if (name == *typed)
            return std::optional(grouping);
    }
    return failure(
        CommandFailure::usage("--by wants project, client, task or tag, not \"" + printable(*typed) + "\"."));
}

/// The identifier behind a typed name, archived or not: what was worked on stays. Empty for an empty text.
template <class T>
Result<std::optional<std::string>, std::string>
wanted(std::string_view kind, const std::optional<std::string> &typed, std::vector<T> items,
       const std::vector<NamedItem> &named)
{
    if (!typed || typed->empty())
        return typed;
    return choose(kind, *typed, named, LookupPurpose::change).map([&](std::size_t place) {
        return std::optional(std::move(items[place].id));
    });
}

Result<std::optional<std::string>, std::string> wantedProject(const std::optional<std::string> &typed,
                                                              const Catalog &catalog)
{
    if (!typed || typed->empty())
        return typed;
    auto found = lookUpProject(*typed, catalog);
    if (!found && found.error().why == NoSingleItem::Why::archived)
        return std::optional(found.error().items.front().id);
    if (!found)
        return failure(lookupText("project", *typed, found.error(), LookupPurpose::change));
    return std::optional(*std::move(found));
}

Result<EntryFilter, CommandFailure> filterOf(const ListOptions &options, const Catalog &catalog)
{
    const auto client = wanted("client", options.client, catalog.clients(), namedItems(catalog.clients()));
    const auto project = wantedProject(options.project, catalog);
    const auto tag = wanted("tag", options.tag, catalog.tags(), namedItems(catalog.tags()));
    for (const auto *found : {&client, &project, &tag}) {
        if (!*found)
            return failure(CommandFailure::of(found->error()));
    }
    return EntryFilter{.clientId = *client, .projectId = *project, .tagId = *tag};
}

/// The days that the tracker always holds: this week, and those loaded before it.
DayRange keptDays(const Tracker &tracker)
{
    const DayKey week = tracker.time().weekStartContaining(tracker.time().today());
    const int weeks = tracker.weeksLoaded();
    return {DayRange::Kind::span, week.adding(std::int64_t{-7} * weeks), 7 * (weeks + 1)};
}

/// The days of a range that are among others; none when they do not meet.
std::optional<DayRange> common(const DayRange &range, const DayRange &others)
{
    const DayKey first = std::max(range.first, others.first);
    const auto count = static_cast<int>(first.daysUntil(std::min(range.last(), others.last())) + 1);
    if (count < 1)
        return std::nullopt;
    return DayRange{count == range.count ? range.kind : DayRange::Kind::span, first, count};
}

std::string figures(const DayRange &range, const std::string &format)
{
    return dayFigures(range.first, format) + " – " + dayFigures(range.last(), format);
}

/// Without the server: the days that are kept, said to be so. A program cannot be told, so it gets all or
/// nothing of a sum.
Result<DayRange, CommandFailure> knownOf(const CommandContext &context, const DayRange &range, bool isSum)
{
    Account &account = *context.account();
    const auto known = common(range, keptDays(account.tracker()));
    if (!known || (isSum && context.json()))
        return failure(CommandFailure::of(
            "These days are not kept on this computer, and the server cannot be reached."));
    writeMessage("Of these days only " + figures(*known, account.me().preferences.dateFormat) +
                 " are kept on this computer, and the server cannot be reached.");
    return *known;
}

/// The entries of the range, or of what is known of it.
Task<Result<Listed, CommandFailure>> listed(Context context, DayRange range, EntryFilter filter, bool isSum,
                                            bool isPicture)
{
    Account &account = *context->account();
    const Tracker &tracker = account.tracker();
    // What began on the evening before reaches into the picture. It can do without when it cannot be had.
    DayRange asked = range;
    if (isPicture && account.isReachable())
        asked = {range.kind, range.first.adding(-1), range.count + 1};
    const auto kept = common(asked, keptDays(tracker));
    if (kept && kept->count == asked.count)
        co_return Listed::of(tracker.entries(), range, filter, tracker, isPicture);
    context->progress().begin("Waiting for the server …");
    auto entries = account.isReachable() ? co_await askedEntries(&account, asked.interval(tracker.time()))
                                         : CallResult<std::vector<TimeEntryResponse>>(
                                               failure(CallError(ConnectionError{account.state().reason()})));
    context->progress().finish();
    if (entries)
        co_return Listed::of(*entries, range, filter, tracker, isPicture);
    if (account.isReachable())
        co_return failure(CommandFailure::of(entries.error()));
    const auto known = knownOf(*context, range, isSum);
    if (!known)
        co_return failure(known.error());
    co_return Listed::of(tracker.entries(), *known, filter, tracker, isPicture);
}

/// What the days are called over a report.
std::string titleOf(const DayRange &range, const UserTime &time, const std::string &format)
{
    if (range.kind == DayRange::Kind::month) {
        const std::string title = time.dayTitle(range.first);
        return title.substr(title.find(' ') + 1);
    }
    return range.count == 1 ? time.dayLabel(range.first) : figures(range, format);
}

/// The same in a sentence: "Nothing tracked in March 2026."
std::string nothing(std::string_view what, const DayRange &range, const UserTime &time,
                    const std::string &format)
{
    const std::string days = titleOf(range, time, format);
    const bool isNamed = days == "Today" || days == "Yesterday";
    const std::string_view link = range.kind == DayRange::Kind::month ? " in "
                                  : range.count > 1 || isNamed        ? ": "
                                                                      : " on ";
    return std::string(what).append(link).append(days) + ".\n";
}

CommandAnswer reportAnswer(const CommandContext &context, const Listed &listed, EntryGrouping grouping)
{
    const Account &account = *context.account();
    const Tracker &tracker = account.tracker();
    std::vector<TimeEntryResponse> entries;
    for (const DayGroup &day : listed.days)
        std::ranges::copy(day.entries, std::back_inserter(entries));
    const EntryReport report =
        EntryReport::of(entries, grouping, listed.filter, tracker.catalog(), tracker.settings());
    if (context.json())
        return {.output = shapes::text(shapes::report(report))};
    const std::string &format = account.me().preferences.dateFormat;
    if (report.groups.empty())
        return {.output = nothing("Nothing to add up", listed.range, tracker.time(), format)};
    CommandAnswer answer{.output = reportText(report, grouping, titleOf(listed.range, tracker.time(), format),
                                              tracker.catalog(), tracker.time(), context.style())};
    if (report.lacksRates)
        answer.messages.emplace_back(
            "Some billable time has no hourly rate, and the amounts are without it. "
            "Give a project one with: orvane projects edit PROJECT --rate 80, or all that has "
            "none with: orvane settings set defaultHourlyRate 80");
    return answer;
}

/// The week as a picture; nothing of an empty week, for which the list has better words.
std::optional<std::string> picture(const Tracker &tracker, const Listed &listed, const TerminalStyle &style)
{
    const std::vector<DayGroup> &days = listed.days;
    const auto columns = CalendarLayout::days(listed.drawn, days.front().day, days.back().day, tracker.time(),
                                              AppClock::now());
    if (std::ranges::all_of(columns, [](const CalendarDay &column) { return column.segments.empty(); }))
        return std::nullopt;
    std::vector<std::int64_t> seconds;
    seconds.reserve(days.size());
    for (const DayGroup &day : days)
        seconds.push_back(listed.filter.seconds(day.entries, tracker.catalog(), AppClock::now()));
    return WeekCalendar(tracker.time(), style, WeekCalendar::labelsFrom(tracker.catalog()))
        .text(columns, seconds);
}

std::string daysText(const CommandContext &context, const Listed &listed)
{
    Account &account = *context.account();
    std::vector<DayGroup> days = listed.days;
    // The days of a week are always seven; a month of them would be mostly dashes.
    if (listed.range.kind == DayRange::Kind::month || listed.range.kind == DayRange::Kind::span)
        std::erase_if(days, [](const DayGroup &day) { return day.entries.empty(); });
    const bool isEmpty = std::ranges::all_of(days, [](const auto &day) { return day.entries.empty(); });
    const bool isFiltered = !listed.filter.isEmpty();
    if (days.empty() || (isEmpty && isFiltered))
        return nothing(isFiltered ? "Nothing of that kind was tracked" : "Nothing tracked", listed.range,
                       account.tracker().time(), account.me().preferences.dateFormat);
    return EntryWriter(account.tracker(), context.style(), listed.filter).days(days);
}

CommandTask list(Context context, ListOptions options)
{
    const auto grouping = groupingOf(options.by);
    if (!grouping)
        co_return failure(grouping.error());
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    const Tracker &tracker = (*opened)->tracker();
    const auto range = options.days.range(tracker.time());
    if (!range)
        co_return failure(CommandFailure::usage(range.error()));
    co_await context->bringUpToDate();
    const auto filter = filterOf(options, tracker.catalog());
    if (!filter)
        co_return failure(filter.error());
    const bool isPicture = range->kind == DayRange::Kind::week && !context->json() && !*grouping &&
                           WeekCalendar::fits(context->style());
    const auto found = co_await listed(context, *range, *filter, grouping->has_value(), isPicture);
    if (!found)
        co_return failure(found.error());
    if (*grouping)
        co_return reportAnswer(*context, *found, **grouping);
    if (auto drawn = isPicture ? picture(tracker, *found, context->style()) : std::nullopt)
        co_return CommandAnswer{.output = *std::move(drawn)};
    if (!context->json())
        co_return CommandAnswer{.output = daysText(*context, *found)};
    shapes::Days answer;
    for (const DayGroup &group : found->days)
        answer.days.push_back(shapes::listedDay(group, tracker.catalog(), AppClock::now(), *filter));
    co_return CommandAnswer{.output = shapes::text(answer)};
}

} // namespace

void addListCommand(CommandTree &tree)
{
    const auto options = std::make_shared<ListOptions>();
    CLI::App *command =
        tree.add("list", "List the entries of some days with totals, or add them up", "Entries");
    CommandTree::addText(command, "DAY", options->days.word, "DAY", "The day; today unless it is named");
    CommandTree::addDayOrWeek(command, options->days.day, options->days.week);
    CommandTree::addDay(command, "--month", options->days.month,
                        "The month that holds the day, or this month");
    CommandTree::addText(command, "--from", options->days.from, "DAY", "The first of several days");
    CommandTree::addText(command, "--to", options->days.to, "DAY",
                         "The last of them; today unless it is named");
    CommandTree::addText(command, "--client", options->client, "CLIENT",
                         "Only what was for this client; \"\" for what was for none");
    CommandTree::addText(command, "--project", options->project, "PROJECT",
                         "Only this project's; \"\" for what has none");
    CommandTree::addText(command, "--tag", options->tag, "TAG",
                         "Only what has this tag; \"\" for what has none");
    CommandTree::addText(command, "--by", options->by, "KIND",
                         "Add the time up by project, client, task or tag, with what it is worth at today's "
                         "rates");
    CommandTree::addFooter(
        command, "A DAY is 2026-03-01, today, yesterday or the name of a weekday, which is the last one. "
                 "What one client owes for a month: orvane list --month --client Acme --by project");
    tree.onRun(command, [options](Context context) { return list(std::move(context), *options); });
}

} // namespace orvane
