// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Instant.h"
#include "Support/Json.h"

#include <memory>
#include <string>

namespace orvane {
class ZoneRules;
}

namespace orvane::server {

/// A moment as a person's clock shows it, with its offset: "2026-03-01T10:30:00+01:00".
struct ZonedTime {
    std::string text;

    bool operator==(const ZonedTime &) const = default;
};

/// The time zone in which a user's days begin and end. Any thread.
class UserZone {
public:
    /// UTC for a name that this computer has no rules for.
    explicit UserZone(std::string_view name);

    const std::string &name() const;
    ZonedTime time(Instant instant) const;
    std::chrono::year_month_day day(Instant instant) const;
    /// The first instant of a real day, which is not midnight where the clock skips it.
    Instant startOf(std::chrono::year_month_day day) const;

private:
    std::shared_ptr<const ZoneRules> m_rules; ///< never null
};

} // namespace orvane::server

template <>
struct orvane::JsonAlias<orvane::server::ZonedTime> {
    static constexpr auto member = &orvane::server::ZonedTime::text;
};
