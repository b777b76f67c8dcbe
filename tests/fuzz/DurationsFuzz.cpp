// SPDX-License-Identifier: GPL-3.0-or-later
// Any text: a length that is read can be shown in each format and lies within the bounds.
#include "Support/Require.h"
#include "Time/Durations.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using orvane::Durations;
    const auto seconds = Durations::parse({reinterpret_cast<const char *>(data), size});
    if (!seconds)
        return 0;
    ORVANE_REQUIRE(*seconds >= 0 && *seconds <= Durations::longest, "a length out of bounds");
    // What "hms" shows reads back as the whole seconds.
    const std::string shown = Durations::format(*seconds, Durations::Format::hms);
    const auto again = Durations::parse(shown);
    ORVANE_REQUIRE(again && Durations::format(*again, Durations::Format::hms) == shown, "not read back");
    return Durations::shortLabel(*seconds).empty() ||
           Durations::format(*seconds, Durations::Format::decimal).empty();
}
