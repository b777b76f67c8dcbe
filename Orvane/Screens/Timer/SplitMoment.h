// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/TypedMoment.h"
#include "Time/UserTime.h"

#include <chrono>
#include <optional>
#include <vector>

namespace orvane {

/// Where an entry is divided in time: a whole minute between its start and its end, in neither of them. A
/// value; any thread.
class SplitMoment {
public:
    /// In the middle. Nothing when the time holds no whole minute.
    static std::optional<SplitMoment> within(Instant start, Instant end);
    /// The same moment in other times, or the nearest to it there is.
    std::optional<SplitMoment> movedInto(Instant start, Instant end) const;

    Instant at() const { return m_at; }
    Instant first() const;
    Instant last() const;
    /// How far into the time it lies, 0 to 1.
    double position() const { return positionOf(m_at); }
    double positionOf(Instant instant) const;

    /// As far as there is time.
    void nudge(std::chrono::minutes by);
    void moveTo(double position);
    /// False, and nothing happens, for what lies beside the time. A time of day that the time holds on
    /// several days is the nearest to where it was.
    bool take(const TypedMoment &typed, const UserTime &time);

    /// Round times of day within the time, at equal steps: about half a dozen.
    std::vector<Instant> roundTimes(const UserTime &time) const;

private:
    SplitMoment(Instant start, Instant end, Instant at) : m_start(start), m_end(end), m_at(at) {}
    void set(Instant at);

    Instant m_start;
    Instant m_end;
    Instant m_at;
};

} // namespace orvane
