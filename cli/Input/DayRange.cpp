// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/DayRange.h"

#include "Input/MomentText.h"

#include <algorithm>
#include <array>

namespace orvane {

namespace {

constexpr int longestList = 3660;

DayRange monthOf(DayKey day)
{
    const DayKey first{day.year, day.month, 1};
    const DayKey next = day.month == 12 ? DayKey{day.year + 1, 1, 1} : DayKey{day.year, day.month + 1, 1};
    return {DayRange::Kind::month, first, static_cast<int>(first.daysUntil(next))};
}

Result<DayRange, std::string> spanOf(const std::optional<std::string> &from, const std::string &to,
                                     const UserTime &time)
{
    if (!from)
        return failure(std::string("--to needs --from, the first day."));
    const auto first = readDay(*from, time);
    const auto last = readDay(to, time);
    if (!first || !last)
        return failure(first ? last.error() : first.error());
    const std::int64_t days = first->daysUntil(*last) + 1;
    if (days < 1)
        return failure("The last day, " + last->description() + ", comes before the first, " +
                       first->description() + ".");
    if (days > longestList)
        return failure(std::string("A list goes over ten years at most."));
    return DayRange{DayRange::Kind::span, *first, static_cast<int>(days)};
}

} // namespace

InstantInterval DayRange::interval(const UserTime &time) const
{
    return {time.startOfDay(first), time.startOfDay(first.adding(count))};
}

Result<DayRange, std::string> DayRangeOptions::range(const UserTime &time) const
{
    const std::array ways{word.has_value(), day.has_value(), week.has_value(), month.has_value(), from || to};
    if (std::ranges::count(ways, true) > 1)
        return failure(std::string(
            "The days can be named in one way only: a DAY, --week, --month, or --from and --to."));
    if (word == "week" || word == "month")
        return failure("\"" + *word + "\" is not a day. Type --" + *word + " for this " + *word + ".");
    if (from || to)
        return spanOf(from, to.value_or("today"), time);
    const auto &named = word ? word : day ? day : week ? week : month;
    return readDay(named.value_or("today"), time).map([&](DayKey typed) {
        if (week)
            return DayRange{DayRange::Kind::week, time.weekStartContaining(typed), 7};
        return month ? monthOf(typed) : DayRange{DayRange::Kind::day, typed, 1};
    });
}

} // namespace orvane
