// SPDX-License-Identifier: GPL-3.0-or-later
// Any text and any number: an instant or a day that is read lies in the accepted years and is written as a
// text, and as a number, that reads back as the same.
#include "Support/DateText.h"
#include "Support/Require.h"

#include <cstring>

namespace {

using namespace orvane;

void checkInstant(Instant instant)
{
    ORVANE_REQUIRE(isAcceptable(instant), "outside the accepted years");
    const Instant written = millisecondsFloor(instant);
    ORVANE_REQUIRE(instantFromIso8601(iso8601Text(instant)) == written, "text reads back differently");
    ORVANE_REQUIRE(instantFromSecondsSince2001(secondsSince2001(written)) == written,
                   "number reads back differently");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    if (const auto instant = instantFromIso8601(text))
        checkInstant(*instant);
    if (const auto day = dayFromText(text))
        ORVANE_REQUIRE(dayText(*day) == text, "a day has one text");
    double seconds = 0;
    if (size >= sizeof seconds) {
        std::memcpy(&seconds, data, sizeof seconds);
        if (const auto instant = instantFromSecondsSince2001(seconds)) {
            checkInstant(*instant);
            ORVANE_REQUIRE(instantFromSecondsSince2001(secondsSince2001(*instant)) == instant, "drifts");
        }
    }
    return 0;
}
