// SPDX-License-Identifier: GPL-3.0-or-later
// Any text: a time of day that is read is one, and reads back from both of the ways in which it is shown.
#include "Support/Require.h"
#include "Time/ClockTime.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using orvane::ClockTime;
    const auto time = ClockTime::parse({reinterpret_cast<const char *>(data), size});
    if (!time)
        return 0;
    ORVANE_REQUIRE(time->hour < 24 && time->minute < 60, "no time of day");
    for (const bool hour12 : {false, true})
        ORVANE_REQUIRE(ClockTime::parse(time->text(hour12)) == time, "not read back");
    return 0;
}
