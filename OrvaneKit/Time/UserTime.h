// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"
#include "Time/ClockTime.h"
#include "Time/DayFieldPart.h"
#include "Time/DayKey.h"
#include "Time/Durations.h"

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

class ZoneRules;

/// From `from` up to but not including `to`.
struct InstantInterval {
    Instant from;
    Instant to;

    bool operator==(const InstantInterval &) const = default;
    bool contains(Instant instant) const { return instant >= from && instant < to; }
};

/// The user's choices about time and every calculation that depends on them: a time zone, the first day of
/// the week, a 12- or 24-hour clock and the way of showing durations. A value type, cheap to copy; any
/// thread.
///
/// Days are those of the proleptic Gregorian calendar and are counted without the zone, so adding a day
/// always gives the next one. A day that a zone skipped (Friday 30 December 2011 in Samoa) begins and ends at
/// one instant. A key that is no day of the calendar stops the process; DayKey's `parse` and `make` are the
/// way in.
class UserTime {
public:
    /// Nothing when the zone is no IANA identifier that this computer knows or `weekStart` is not 0 to 6.
    static std::optional<UserTime> make(std::string_view timeZone, int weekStart = 1, bool hour12 = false,
                                        Durations::Format durationFormat = Durations::Format::hms);
    /// Coordinated universal time, weeks from Monday, a 24-hour clock.
    static UserTime utc();

    bool operator==(const UserTime &other) const;

    /// The IANA identifier as it was given.
    const std::string &timeZone() const;
    /// 0 for Sunday to 6 for Saturday.
    int weekStart() const { return m_weekStart; }
    bool hour12() const { return m_hour12; }
    Durations::Format durationFormat() const { return m_durationFormat; }

    // Instants and days
    /// How far the wall clock is ahead of UTC.
    std::chrono::seconds offset(Instant instant) const;
    DayKey dayKey(Instant instant) const;
    ClockTime timeOfDay(Instant instant) const;
    /// What the clock shows as minutes after 0:00 with their fraction, below 1440.
    double minuteOfDay(Instant instant) const;
    DayKey today() const;
    /// The instant at that time of that day. A time that comes twice is taken as the first, one that is
    /// skipped is moved on by the length of the gap.
    Instant date(DayKey day, int hour, int minute) const;
    Instant date(DayKey day, ClockTime time) const { return date(day, time.hour, time.minute); }
    /// The first instant of the day, which is not midnight where the clock skips it.
    Instant startOfDay(DayKey day) const;
    InstantInterval dayInterval(DayKey day) const;

    // Days and weeks
    DayKey adding(std::int64_t days, DayKey day) const { return day.adding(days); }
    DayKey weekStartContaining(DayKey day) const;
    DayKey weekStartContaining(Instant instant) const { return weekStartContaining(dayKey(instant)); }
    /// The seven days of the week that holds the day.
    std::array<DayKey, 7> weekContaining(DayKey day) const;
    /// From the start of that week's first day to the start of the day seven days later.
    InstantInterval weekInterval(DayKey day) const;

    // Texts, always in English
    /// 09:05, or 9:05 am on a 12-hour clock.
    std::string clockLabel(Instant instant) const;
    std::string timeLabel(Instant instant) const;
    /// "Today", "Yesterday", "Fri, 7 Mar", or with the year when it is not this one.
    std::string dayLabel(DayKey day) const;
    /// "7 March 2025".
    std::string dayTitle(DayKey day) const;
    /// A length in the user's chosen format.
    std::string duration(double seconds) const { return Durations::format(seconds, m_durationFormat); }
    /// The order in which a typed date gives its parts.
    static const std::vector<DayFieldPart> &dayFieldOrder();

    /// Reads a typed time: "now" (this minute), "-15" or "-1h" (so long before now), or a time of the
    /// reference day such as 930. Nothing for other text and for a result outside the years 1900 to 9999.
    std::optional<Instant> resolveClock(std::string_view text, DayKey referenceDay) const;

private:
    UserTime(std::shared_ptr<const ZoneRules> rules, int weekStart, bool hour12,
             Durations::Format durationFormat);

    std::shared_ptr<const ZoneRules> m_rules; ///< never null
    int m_weekStart;
    bool m_hour12;
    Durations::Format m_durationFormat;
};

} // namespace orvane
