// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a zone file: every instant lies in a stretch, and stretches join up.
#include "Support/Require.h"
#include "Time/ZoneHistory.h"

#include <cstdint>

namespace {

using namespace orvane;

void check(const ZoneHistory &history, Instant instant)
{
    const ZoneSpan span = history.spanAt(instant);
    ORVANE_REQUIRE(span.from <= instant && (instant < span.to || span.to == Instant::max()), "elsewhere");
    ORVANE_REQUIRE(abs(span.offset) < std::chrono::hours{26}, "an offset beyond all clocks");
    if (span.to == Instant::max())
        return;
    const ZoneSpan next = history.spanAt(span.to);
    ORVANE_REQUIRE(next.from == span.to, "a gap between stretches");
    ORVANE_REQUIRE(history.spanAt(next.from - std::chrono::microseconds{1}).to == next.from, "an overlap");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto history = ZoneHistory::parse({reinterpret_cast<const char *>(data), size});
    if (!history)
        return 0;
    check(*history, Instant::min());
    check(*history, Instant::max());
    constexpr std::chrono::days step{5003};
    for (Instant instant = earliestInstant; instant < instantLimit; instant += step)
        check(*history, instant);
    return 0;
}
