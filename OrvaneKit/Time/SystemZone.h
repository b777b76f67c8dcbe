// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"

#include <optional>
#include <string>

namespace orvane {

/// Where a computer says in which time zone it is.
struct ZoneSources {
    std::optional<std::string> variable = {}; ///< TZ
    std::string link = "/etc/localtime";      ///< leads to the zone's file
    std::string name = "/etc/timezone";       ///< a file with the identifier, where the link is a copy

    static ZoneSources ofThisComputer();
};

/// The IANA identifier of this computer's time zone, for which there are rules here; UTC on a computer that
/// was told none. The error is what it says instead and is not known ("XYZ5"); empty when its zone has no
/// name. Any thread.
Result<std::string, std::string> systemZone(const ZoneSources &sources = ZoneSources::ofThisComputer());

} // namespace orvane
