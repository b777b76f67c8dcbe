// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/DateText.h"

#include <cmath>

namespace orvane {

namespace {

using namespace std::chrono;

constexpr Instant year2001 = sys_days{year{2001} / January / 1};

char *writeDigits(char *out, unsigned value, int count)
{
    for (int place = count - 1; place >= 0; --place) {
        out[place] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
    return out + count;
}

/// Reads from the front of a text, remembering whether anything was out of place.
struct Cursor {
    std::string_view rest;
    bool ok = true;

    unsigned digits(std::size_t count)
    {
        unsigned value = 0;
        if (rest.size() < count)
            return fail();
        for (std::size_t i = 0; i < count; ++i) {
            const char c = rest[i];
            if (c < '0' || c > '9')
                return fail();
            value = value * 10 + static_cast<unsigned>(c - '0');
        }
        rest.remove_prefix(count);
        return value;
    }

    bool take(char wanted)
    {
        if (rest.empty() || rest.front() != wanted)
            return false;
        rest.remove_prefix(1);
        return true;
    }

    void need(char wanted)
    {
        if (!take(wanted))
            ok = false;
    }

    unsigned fail()
    {
        ok = false;
        return 0;
    }
};

unsigned takeMilliseconds(Cursor &cursor)
{
    unsigned value = 0;
    std::size_t count = 0;
    while (!cursor.rest.empty() && cursor.rest.front() >= '0' && cursor.rest.front() <= '9') {
        if (count < 3)
            value = value * 10 + static_cast<unsigned>(cursor.rest.front() - '0');
        cursor.rest.remove_prefix(1);
        ++count;
    }
    if (count == 0)
        return cursor.fail();
    for (; count < 3; ++count)
        value *= 10;
    return value;
}

minutes takeZone(Cursor &cursor)
{
    if (cursor.take('Z') || cursor.take('z'))
        return minutes{0};
    const bool west = cursor.take('-');
    if (!west)
        cursor.need('+');
    const unsigned hour = cursor.digits(2);
    cursor.take(':');
    const unsigned minute = cursor.digits(2);
    if (hour > 18 || minute > 59)
        cursor.fail();
    const minutes offset{hour * 60 + minute};
    return west ? -offset : offset;
}

year_month_day takeDay(Cursor &cursor)
{
    const unsigned y = cursor.digits(4);
    cursor.need('-');
    const unsigned m = cursor.digits(2);
    cursor.need('-');
    const unsigned d = cursor.digits(2);
    const year_month_day day{year{static_cast<int>(y)}, month{m}, std::chrono::day{d}};
    if (!day.ok() || y < 1900)
        cursor.fail();
    return day;
}

} // namespace

void appendIso8601Text(std::string &out, Instant instant)
{
    const auto midnight = floor<days>(instant);
    const year_month_day day{midnight};
    const auto clock = static_cast<unsigned>(duration_cast<milliseconds>(instant - midnight).count());
    char text[24];
    char *at = writeDigits(text, static_cast<unsigned>(static_cast<int>(day.year())), 4);
    *at++ = '-';
    at = writeDigits(at, static_cast<unsigned>(day.month()), 2);
    *at++ = '-';
    at = writeDigits(at, static_cast<unsigned>(day.day()), 2);
    *at++ = 'T';
    at = writeDigits(at, clock / 3'600'000, 2);
    *at++ = ':';
    at = writeDigits(at, clock / 60'000 % 60, 2);
    *at++ = ':';
    at = writeDigits(at, clock / 1000 % 60, 2);
    *at++ = '.';
    at = writeDigits(at, clock % 1000, 3);
    *at++ = 'Z';
    out.append(text, at);
}

std::string iso8601Text(Instant instant)
{
    std::string text;
    appendIso8601Text(text, instant);
    return text;
}

std::optional<Instant> instantFromIso8601(std::string_view text)
{
    Cursor cursor{text};
    const year_month_day day = takeDay(cursor);
    if (!cursor.take('T'))
        cursor.need('t');
    const unsigned hour = cursor.digits(2);
    cursor.need(':');
    const unsigned minute = cursor.digits(2);
    cursor.need(':');
    const unsigned second = cursor.digits(2);
    const unsigned fraction = cursor.take('.') ? takeMilliseconds(cursor) : 0;
    const minutes offset = takeZone(cursor);
    if (!cursor.ok || !cursor.rest.empty() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    const Instant instant =
        sys_days{day} + hours{hour} + minutes{minute} + seconds{second} + milliseconds{fraction} - offset;
    return isAcceptable(instant) ? std::optional{instant} : std::nullopt;
}

double secondsSince2001(Instant instant)
{
    return static_cast<double>((instant - year2001).count()) / 1e6;
}

std::optional<Instant> instantFromSecondsSince2001(double seconds)
{
    // The bound keeps the conversion below defined; the exact check follows it.
    if (!std::isfinite(seconds) || std::abs(seconds) > 1e12)
        return std::nullopt;
    // Beyond 2^31 seconds a double no longer tells each microsecond from the next, so that an instant would
    // change a little whenever it is read and written; a millisecond it tells for all acceptable instants.
    const bool isFar = std::abs(seconds) >= 0x1p31;
    const Instant instant = isFar ? year2001 + milliseconds{std::llround(seconds * 1e3)}
                                  : year2001 + microseconds{std::llround(seconds * 1e6)};
    return isAcceptable(instant) ? std::optional{instant} : std::nullopt;
}

std::string dayText(year_month_day day)
{
    std::string text(10, '-');
    writeDigits(text.data(), static_cast<unsigned>(static_cast<int>(day.year())), 4);
    writeDigits(text.data() + 5, static_cast<unsigned>(day.month()), 2);
    writeDigits(text.data() + 8, static_cast<unsigned>(day.day()), 2);
    return text;
}

std::optional<year_month_day> dayFromText(std::string_view text)
{
    Cursor cursor{text};
    const year_month_day day = takeDay(cursor);
    return cursor.ok && cursor.rest.empty() ? std::optional{day} : std::nullopt;
}

} // namespace orvane
