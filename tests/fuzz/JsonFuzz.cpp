// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes, read as several of the API's schemas in both codings of dates: what is read is written as JSON
// that reads back as an equal value, and strict reading accepts nothing that the other does not.
#include "OrvaneAPI/Schemas.h"
#include "Support/Require.h"

namespace {

using namespace orvane;

template <class T>
void check(std::string_view text, DateCoding dates)
{
    const auto read = decodeJson<T>(text, {.dates = dates});
    const bool isStrict = decodeJson<T>(text, {.dates = dates, .strict = true}).has_value();
    ORVANE_REQUIRE(read || !isStrict, "strict reading accepts more");
    if (!read)
        return;
    // Instants are written to the millisecond, so the first reading may hold finer ones than the second.
    const std::string written = encodeJson(*read, {.dates = dates});
    const auto again = decodeJson<T>(written, {.dates = dates});
    ORVANE_REQUIRE(again, "does not read back");
    ORVANE_REQUIRE(encodeJson(*again, {.dates = dates}) == written, "is written differently");
    ORVANE_REQUIRE(
        decodeJson<T>(encodeJson(*again, {.dates = dates, .writeNulls = true}), {.dates = dates}) == *again,
        "is not equal");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const DateCoding dates : {DateCoding::iso8601, DateCoding::secondsSince2001}) {
        check<TimeEntryResponse>(text, dates);
        check<std::vector<TimeEntryResponse>>(text, dates);
        check<TimeEntryRequest>(text, dates);
        check<HttpValidationProblemDetails>(text, dates);
        check<SummaryReport>(text, dates);
        check<PasskeyOptionsResponse>(text, dates);
        check<AgreementResponse>(text, dates);
        check<SessionResponse>(text, dates);
    }
    return 0;
}
