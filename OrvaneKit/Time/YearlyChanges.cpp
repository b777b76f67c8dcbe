// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/YearlyChanges.h"

#include "Time/TextScanner.h"

#include <algorithm>

namespace orvane {

namespace {

using namespace std::chrono;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isNameCharacter(char c)
{
    return isLetter(c) || isAsciiDigit(c) || c == '+' || c == '-';
}

Instant instantOf(local_seconds local, seconds offset)
{
    return Instant{local.time_since_epoch() - offset};
}

} // namespace

/// Reads the rule from left to right. Its offsets count westwards and are turned round here.
class YearlyChanges::Reader {
public:
    explicit Reader(std::string_view text) : m_rest(text) {}

    std::optional<YearlyChanges> read()
    {
        YearlyChanges changes;
        const bool isNamed = skipName();
        const auto west = isNamed ? span(24) : std::nullopt;
        if (!west)
            return std::nullopt;
        changes.m_offset = -*west;
        if (m_rest.empty())
            return changes;
        changes.m_daylight = daylight(changes.m_offset);
        return changes.m_daylight && m_rest.empty() ? std::optional(changes) : std::nullopt;
    }

private:
    bool take(char c)
    {
        if (!m_rest.starts_with(c))
            return false;
        m_rest.remove_prefix(1);
        return true;
    }

    std::string_view takeWhile(bool (*fits)(char))
    {
        const auto end = std::ranges::find_if_not(m_rest, fits);
        const std::string_view taken(m_rest.begin(), end);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    /// "CEST" or "<+0330>".
    bool skipName()
    {
        const bool isQuoted = take('<');
        const std::string_view name = takeWhile(isQuoted ? isNameCharacter : isLetter);
        return name.size() >= 3 && (!isQuoted || take('>'));
    }

    std::optional<int> number(int least, int most)
    {
        const std::string_view digits = takeWhile(isAsciiDigit);
        if (digits.empty() || digits.size() > 3)
            return std::nullopt;
        int value = 0;
        for (const char digit : digits)
            value = value * 10 + (digit - '0');
        return value >= least && value <= most ? std::optional(value) : std::nullopt;
    }

    /// "1", "-3:30" or "+10:00:00".
    std::optional<seconds> span(int mostHours)
    {
        const bool isNegative = take('-');
        if (!isNegative)
            take('+');
        const auto wholeHours = number(0, mostHours);
        if (!wholeHours)
            return std::nullopt;
        seconds result = hours{*wholeHours};
        for (const seconds unit : {seconds{60}, seconds{1}}) {
            if (!take(':'))
                break;
            const auto part = number(0, 59);
            if (!part)
                return std::nullopt;
            result += unit * *part;
        }
        return isNegative ? -result : result;
    }

    std::optional<Daylight> daylight(seconds usual)
    {
        Daylight result;
        if (!skipName())
            return std::nullopt;
        result.offset = usual + hours{1};
        if (!m_rest.starts_with(',')) {
            const auto west = span(24);
            if (!west)
                return std::nullopt;
            result.offset = -*west;
        }
        const auto begin = moment();
        const auto end = begin ? moment() : std::nullopt;
        if (!end)
            return std::nullopt;
        result.begin = *begin;
        result.end = *end;
        return result;
    }

    std::optional<Moment> moment()
    {
        if (!take(','))
            return std::nullopt;
        auto result = dayOfYear();
        if (!result)
            return std::nullopt;
        constexpr int weekInHours = 167;
        const auto time = take('/') ? span(weekInHours) : std::optional<seconds>(hours{2});
        if (!time)
            return std::nullopt;
        result->time = *time;
        return result;
    }

    std::optional<Moment> dayOfYear()
    {
        Moment result;
        if (take('M'))
            return weekdayOfMonth();
        const bool isJulian = take('J');
        result.kind = isJulian ? Moment::Kind::julian : Moment::Kind::ordinal;
        const auto day = number(isJulian ? 1 : 0, 365);
        if (!day)
            return std::nullopt;
        result.day = *day;
        return result;
    }

    std::optional<Moment> weekdayOfMonth()
    {
        Moment result;
        const auto month = number(1, 12);
        const auto week = month && take('.') ? number(1, 5) : std::nullopt;
        const auto weekday = week && take('.') ? number(0, 6) : std::nullopt;
        if (!weekday)
            return std::nullopt;
        result.month = *month;
        result.week = *week;
        result.weekday = *weekday;
        return result;
    }

    std::string_view m_rest;
};

std::optional<YearlyChanges> YearlyChanges::parse(std::string_view text)
{
    return Reader(text).read();
}

local_seconds YearlyChanges::Moment::inYear(int year) const
{
    const std::chrono::year y{year};
    const local_days newYear{y / January / 1};
    if (kind == Kind::ordinal)
        return newYear + days{day} + time;
    if (kind == Kind::julian)
        return newYear + days{day - (y.is_leap() && day >= 60 ? 0 : 1)} + time;
    const auto m = y / std::chrono::month{static_cast<unsigned>(month)};
    const std::chrono::weekday wanted{static_cast<unsigned>(weekday)};
    const local_days found =
        week == 5 ? local_days{m / wanted[last]} : local_days{m / wanted[static_cast<unsigned>(week)]};
    return found + time;
}

std::vector<ZoneChange> YearlyChanges::inYear(int year) const
{
    if (!m_daylight)
        return {};
    // Each change is given in the wall time that it ends.
    const ZoneChange begin{instantOf(m_daylight->begin.inYear(year), m_offset), m_daylight->offset};
    const ZoneChange end{instantOf(m_daylight->end.inYear(year), m_daylight->offset), m_offset};
    return begin.at < end.at ? std::vector{begin, end} : std::vector{end, begin};
}

} // namespace orvane
