// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"
#include "Time/DayKey.h"
#include "Time/UserTime.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace orvane {

/// Whole days in a row, and the moments at which they begin and end.
struct DaySpan {
    DayKey first;
    int count = 0;
    InstantInterval interval;

    bool operator==(const DaySpan &) const = default;

    static DaySpan of(const UserTime &time, DayKey first, int count);
    /// The week that holds `day`, with so many weeks before it.
    static DaySpan weeks(const UserTime &time, DayKey day, int before);
    bool contains(DayKey day) const;
};

/// An answer of the server: its number in this process, and when it came.
struct AnswerMark {
    std::uint64_t number = 0;
    Instant at;

    bool operator==(const AnswerMark &) const = default;
};

/// The days whose entries are all known, each as of an answer of the server: the loaded weeks, and single
/// days that were asked for beside them. It changes when an answer comes and never by the clock: what was
/// known on Sunday is known on Monday. A value.
class KnownDays {
public:
    struct Asked {
        DaySpan days;
        AnswerMark answer;
        bool operator==(const Asked &) const = default;
    };

    bool operator==(const KnownDays &) const = default;

    /// The loaded weeks; none before the first answer.
    const std::optional<Asked> &window() const { return m_window; }
    /// What was asked for beside them, oldest answer first.
    const std::vector<Asked> &beside() const { return m_beside; }
    /// Whether the server has said all entries of these days.
    bool contains(DayKey first, int count) const;
    /// Whether an entry that starts then lies in a known day.
    bool contains(Instant start) const;

    /// The loaded weeks are these from now on; what was known before and lies outside is not any more.
    void setWindow(DaySpan days, AnswerMark answer);
    /// The loaded weeks begin earlier; `before` ends where they begin. Without loaded weeks it is known
    /// beside.
    void extend(DaySpan before, AnswerMark answer);
    void add(DaySpan days, AnswerMark answer);
    /// Days are others now, as in another zone.
    void clear();

private:
    std::optional<Asked> m_window;
    std::vector<Asked> m_beside;
};

} // namespace orvane
