// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/UserTime.h"

#include "Support/Require.h"
#include "Time/AppClock.h"
#include "Time/DateFormatters.h"
#include "Time/TextScanner.h"
#include "Time/ZoneRules.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

using namespace std::chrono;

LocalTime localMidnight(DayKey day)
{
    return LocalTime{local_days{day.civil()}.time_since_epoch()};
}

/// A day reads the same in every zone, so its text is made in UTC: one set of formatters serves all zones,
/// and a day that the user's zone skipped keeps its own name.
std::string dayText(DayKey day, std::string_view format)
{
    static const UserTime utc = UserTime::utc();
    return DateFormatters::string(sys_days{day.civil()}, format, utc);
}

bool isNow(std::string_view text)
{
    TextScanner scanner(text);
    return scanner.takeWord("now") && scanner.atEnd();
}

microseconds wholeMicroseconds(double seconds)
{
    return microseconds{std::llround(seconds * 1e6)};
}

} // namespace

UserTime::UserTime(std::shared_ptr<const ZoneRules> rules, int weekStart, bool hour12,
                   Durations::Format durationFormat)
    : m_rules(std::move(rules)), m_weekStart(weekStart), m_hour12(hour12), m_durationFormat(durationFormat)
{
}

std::optional<UserTime> UserTime::make(std::string_view timeZone, int weekStart, bool hour12,
                                       Durations::Format durationFormat)
{
    if (weekStart < 0 || weekStart > 6)
        return std::nullopt;
    auto rules = ZoneRules::find(timeZone);
    if (!rules)
        return std::nullopt;
    return UserTime(std::move(rules), weekStart, hour12, durationFormat);
}

UserTime UserTime::utc()
{
    auto time = make("Etc/UTC");
    ORVANE_REQUIRE(time, "UTC is a time zone");
    return *std::move(time);
}

bool UserTime::operator==(const UserTime &other) const
{
    return timeZone() == other.timeZone() && m_weekStart == other.m_weekStart && m_hour12 == other.m_hour12 &&
           m_durationFormat == other.m_durationFormat;
}

const std::string &UserTime::timeZone() const
{
    return m_rules->identifier();
}

seconds UserTime::offset(Instant instant) const
{
    return m_rules->offset(instant);
}

DayKey UserTime::dayKey(Instant instant) const
{
    return DayKey::of(year_month_day{floor<days>(m_rules->localTime(instant))});
}

ClockTime UserTime::timeOfDay(Instant instant) const
{
    const LocalTime local = m_rules->localTime(instant);
    const auto minute = floor<minutes>(local - floor<days>(local)).count();
    return {static_cast<std::uint8_t>(minute / 60), static_cast<std::uint8_t>(minute % 60)};
}

double UserTime::minuteOfDay(Instant instant) const
{
    const LocalTime local = m_rules->localTime(instant);
    return std::chrono::duration<double, minutes::period>(local - floor<days>(local)).count();
}

DayKey UserTime::today() const
{
    return dayKey(AppClock::now());
}

Instant UserTime::date(DayKey day, int hour, int minute) const
{
    ORVANE_REQUIRE(hour >= 0 && hour < 24 && minute >= 0 && minute < 60, "no time of day");
    return m_rules->instant(localMidnight(day) + hours{hour} + minutes{minute});
}

Instant UserTime::startOfDay(DayKey day) const
{
    return m_rules->firstInstant(localMidnight(day));
}

InstantInterval UserTime::dayInterval(DayKey day) const
{
    return {startOfDay(day), startOfDay(day.adding(1))};
}

DayKey UserTime::weekStartContaining(DayKey day) const
{
    return day.adding(-((day.weekday() - m_weekStart + 7) % 7));
}

std::array<DayKey, 7> UserTime::weekContaining(DayKey day) const
{
    std::array<DayKey, 7> week;
    week.front() = weekStartContaining(day);
    for (std::size_t i = 1; i < week.size(); ++i)
        week[i] = week.front().adding(static_cast<std::int64_t>(i));
    return week;
}

InstantInterval UserTime::weekInterval(DayKey day) const
{
    const DayKey first = weekStartContaining(day);
    return {startOfDay(first), startOfDay(first.adding(7))};
}

std::string UserTime::clockLabel(Instant instant) const
{
    return timeOfDay(instant).text(m_hour12);
}

std::string UserTime::timeLabel(Instant instant) const
{
    // What the formatters give for "HH:mm" and "h:mm a", without waking them: a list shows two of these a
    // line.
    return clockLabel(instant);
}

std::string UserTime::dayLabel(DayKey day) const
{
    const DayKey now = today();
    if (day == now)
        return "Today";
    if (day == now.adding(-1))
        return "Yesterday";
    return dayText(day, day.year == now.year ? "EEE, d MMM" : "EEE, d MMM yyyy");
}

std::string UserTime::dayTitle(DayKey day) const
{
    return dayText(day, "d MMMM yyyy");
}

const std::vector<DayFieldPart> &UserTime::dayFieldOrder()
{
    static const std::vector<DayFieldPart> order = [] {
        std::vector<DayFieldPart> parts;
        const auto add = [&](DayFieldPart part) {
            if (std::ranges::find(parts, part) == parts.end())
                parts.push_back(part);
        };
        for (const char letter : DateFormatters::patternFor("yMd").value_or("d.M.y")) {
            if (letter == 'd')
                add(DayFieldPart::day);
            else if (letter == 'M' || letter == 'L')
                add(DayFieldPart::month);
            else if (letter == 'y')
                add(DayFieldPart::year);
        }
        return parts;
    }();
    return order;
}

std::optional<Instant> UserTime::resolveClock(std::string_view text, DayKey referenceDay) const
{
    text = TextScanner::trimmed(text);
    std::optional<Instant> result;
    if (isNow(text)) {
        const Instant now = AppClock::now();
        const LocalTime local = m_rules->localTime(now);
        result = now - (local - floor<minutes>(local));
    } else if (text.starts_with('-')) {
        if (const auto seconds = Durations::parse(text.substr(1)))
            result = millisecondsFloor(AppClock::now() - wholeMicroseconds(*seconds));
    } else if (const auto time = ClockTime::parse(text)) {
        result = date(referenceDay, *time);
    }
    return result && isAcceptable(*result) ? result : std::nullopt;
}

} // namespace orvane
