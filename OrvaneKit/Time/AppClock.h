// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"

#include <chrono>
#include <mutex>

namespace orvane {

/// How far the product's clock stands from the computer's. There is one for the process, made on first use;
/// it stays at 0 unless a person asked for another time (a rehearsal, a test). Any thread.
class OffsetBox {
public:
    static OffsetBox &shared();

    OffsetBox(const OffsetBox &) = delete;
    OffsetBox &operator=(const OffsetBox &) = delete;

    /// Seconds to add to the computer's time.
    double offset() const;
    /// The number must be finite and not move the clock by more than the span of acceptable instants.
    void setOffset(double seconds);

private:
    OffsetBox() = default;

    mutable std::mutex m_lock;
    double m_offset = 0;
};

/// The one source of "now" for the core. Any thread.
class AppClock {
public:
    /// The computer's time plus the offset of OffsetBox, cut to the whole millisecond: what becomes part of
    /// an entry then compares equal to the server's echo of it.
    static Instant now();

    /// Sets the offset so that `now` is this instant at this moment and runs on from there.
    static void setNow(Instant instant);

    /// Takes the computer's time from elsewhere, as a simulator does in which time passes by itself; null
    /// gives the system's back.
    static void setSource(Instant (*source)());
};

/// While one lives, `AppClock::now` stands still: all of one action happens at the moment when it was asked
/// for, however long its work takes. Made and ended on one thread; one inside another changes nothing.
class ClockHold {
public:
    ClockHold();
    ClockHold(const ClockHold &) = delete;
    ClockHold &operator=(const ClockHold &) = delete;
    ~ClockHold();

    /// How long the clock has stood still, by a clock that nobody sets.
    std::chrono::milliseconds held() const;

private:
    std::chrono::steady_clock::time_point m_since;
    bool m_isOutermost;
};

} // namespace orvane
