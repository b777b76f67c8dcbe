// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/Commands.h"

#include "Catalog/EntrySeconds.h"
#include "CommandTree.h"
#include "Input/MomentText.h"
#include "Output/EntryText.h"
#include "Output/JsonShapes.h"
#include "Output/WeekCalendar.h"
#include "Time/AppClock.h"

#include <algorithm>

namespace orvane {

namespace {

struct ListOptions {
    std::optional<std::string> day;
    std::optional<std::string> week;
};

struct DayRange {
    DayKey first;
    int count = 1;
};

Result<DayRange, CommandFailure> rangeOf(const ListOptions &options, const UserTime &time)
{
    const auto day = readDay(options.week ? *options.week : options.day.value_or("today"), time);
    if (!day)
        return failure(CommandFailure::usage(day.error()));
    return options.week ? DayRange{time.weekStartContaining(*day), 7} : DayRange{*day, 1};
}

/// The weeks that the tracker always holds: this one, and those loaded before it.
bool isInWindow(const Tracker &tracker, const DayRange &range)
{
    const DayKey week = tracker.time().weekStartContaining(tracker.time().today());
    return range.first >= week.adding(std::int64_t{-7} * tracker.weeksLoaded()) &&
           range.first.adding(range.count) <= week.adding(7);
}

/// The week as a picture; nothing of an empty week, for which the list has better words.
std::optional<std::string> picture(Tracker &tracker, const std::vector<DayGroup> &days,
                                   const TerminalStyle &style)
{
    const auto columns = CalendarLayout::days(tracker.entries(), days.front().day, days.back().day,
                                              tracker.time(), AppClock::now());
    if (std::ranges::all_of(columns, [](const CalendarDay &column) { return column.segments.empty(); }))
        return std::nullopt;
    std::vector<std::int64_t> seconds;
    seconds.reserve(days.size());
    for (const DayGroup &day : days)
        seconds.push_back(entrySeconds(day.entries, AppClock::now()));
    return WeekCalendar(tracker.time(), style, WeekCalendar::labelsFrom(tracker.catalog()))
        .text(columns, seconds);
}

CommandTask list(Context context, ListOptions options)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    Account &account = **opened;
    Tracker &tracker = account.tracker();
    const auto range = rangeOf(options, tracker.time());
    if (!range)
        co_return failure(range.error());
    co_await context->bringUpToDate();
    if (!isInWindow(tracker, *range) && !co_await tracker.loadDays(range->first, range->count))
        co_return failure(CommandFailure::of(
            "These days are not kept on this computer, and the server cannot be reached."));
    const bool isPicture = options.week && !context->json() && WeekCalendar::fits(context->style());
    // What began on the evening before reaches into the picture. It can do without when it cannot be had.
    if (isPicture && account.isReachable())
        co_await tracker.loadDays(range->first.adding(-1), 1);
    const auto days = tracker.days(range->first, range->count);
    if (auto drawn = isPicture ? picture(tracker, days, context->style()) : std::nullopt)
        co_return CommandAnswer{.output = *std::move(drawn)};
    if (!context->json())
        co_return CommandAnswer{.output = EntryWriter(tracker, context->style()).days(days)};
    shapes::Days answer;
    for (const DayGroup &group : days)
        answer.days.push_back(shapes::day(group, tracker.catalog(), AppClock::now()));
    co_return CommandAnswer{.output = shapes::text(answer)};
}

} // namespace

void addListCommand(CommandTree &tree)
{
    const auto options = std::make_shared<ListOptions>();
    CLI::App *command = tree.add("list", "List the entries of a day or a week, with totals", "Entries");
    CommandTree::addDayOrWeek(command, options->day, options->week);
    CommandTree::addFooter(
        command, "A DAY is 2026-03-01, today, yesterday or the name of a weekday, which is the last one.");
    tree.onRun(command, [options](Context context) { return list(std::move(context), *options); });
}

} // namespace orvane
