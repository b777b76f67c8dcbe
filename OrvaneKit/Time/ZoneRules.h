// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"
#include "Time/ZoneHistory.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// A wall-clock time, without saying where.
using LocalTime = std::chrono::local_time<std::chrono::microseconds>;

/// The offsets of one time zone, from the system's zone files. Shared and never changed; any thread, without
/// a lock.
class ZoneRules {
public:
    /// The zone with an IANA identifier ("Europe/Paris", "UTC"); null for any other text and for a zone that
    /// this computer has no sound file of. Each zone is made once in a process.
    static std::shared_ptr<const ZoneRules> find(std::string_view identifier);

    ZoneRules(const ZoneRules &) = delete;
    ZoneRules &operator=(const ZoneRules &) = delete;

    const std::string &identifier() const { return m_identifier; }

    /// How far the wall clock is ahead of UTC.
    std::chrono::seconds offset(Instant instant) const { return spanAt(instant).offset; }
    LocalTime localTime(Instant instant) const;

    /// When the wall clock shows this. Of a time that comes twice it is the first one; a time that is skipped
    /// is taken as if the clock had not been put forward yet (in a gap from 2:00 to 3:00, 2:30 becomes 3:30).
    Instant instant(LocalTime local) const;

    /// The first instant at which the wall clock shows this or, where it is skipped, what comes after the
    /// gap.
    Instant firstInstant(LocalTime local) const;

private:
    /// Where a wall-clock time lies; `gap` is set when the clock skips it, to when it does.
    struct Place {
        Instant instant;
        std::optional<Instant> gap;
    };

    ZoneRules(std::string identifier, ZoneHistory history);
    const ZoneSpan &spanAt(Instant instant) const;
    Place find(LocalTime local) const;

    std::string m_identifier;
    ZoneHistory m_history;
};

} // namespace orvane
