// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <source_location>

namespace orvane {

/// Ends the process with a message on standard error: for programming errors alone, never for bad input.
[[noreturn]] void stopOnProgrammingError(const char *message,
                                         std::source_location where = std::source_location::current());

} // namespace orvane

/// Stops the process when a condition that the code itself guarantees does not hold; checked in every build.
#define ORVANE_REQUIRE(condition, message)                                                                   \
    do {                                                                                                     \
        if (!(condition)) [[unlikely]]                                                                       \
            ::orvane::stopOnProgrammingError(message);                                                       \
    } while (false)
