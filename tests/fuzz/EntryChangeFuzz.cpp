// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes: a change that is read, in either coding of dates, is written and read back as the same change.
#include "Catalog/EntryChange.h"
#include "Support/Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace orvane;
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    for (const DateCoding dates : {DateCoding::secondsSince2001, DateCoding::iso8601}) {
        const auto change = decodeJson<EntryChange>(text, {.dates = dates});
        if (!change)
            continue;
        const std::string written = encodeJson(*change, {.dates = dates});
        const auto again = decodeJson<EntryChange>(written, {.dates = dates});
        ORVANE_REQUIRE(again, "not read back");
        // Text written once stays as it is; the first reading may have cut an instant to what is written.
        ORVANE_REQUIRE(encodeJson(*again, {.dates = dates}) == written, "read back as another change");
        ORVANE_REQUIRE(again->withVersion("1").entryId() == change->entryId(), "another entry");
    }
    return 0;
}
