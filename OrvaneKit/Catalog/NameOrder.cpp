// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/NameOrder.h"

#include "Support/Require.h"

#include <cstdint>
#include <memory>
#include <unicode/coll.h>

namespace orvane {

namespace {

std::unique_ptr<const icu::Collator> makeCollator()
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::Collator> collator(icu::Collator::createInstance(icu::Locale("en_GB"), status));
    ORVANE_REQUIRE(U_SUCCESS(status) != 0 && collator, "the collation data is missing");
    collator->setAttribute(UCOL_STRENGTH, UCOL_SECONDARY, status);
    collator->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
    ORVANE_REQUIRE(U_SUCCESS(status) != 0, "the collation cannot be set up");
    return collator;
}

} // namespace

std::string nameOrderKey(std::string_view name)
{
    static const auto collator = makeCollator();
    const auto text =
        icu::UnicodeString::fromUTF8(icu::StringPiece(name.data(), static_cast<int32_t>(name.size())));
    std::string key(name.size() * 2 + 16, '\0');
    const auto capacity = [&] { return static_cast<int32_t>(key.size()); };
    const auto bytes = [&] { return reinterpret_cast<std::uint8_t *>(key.data()); };
    int32_t length = collator->getSortKey(text, bytes(), capacity());
    if (length > capacity()) {
        key.resize(static_cast<std::size_t>(length));
        length = collator->getSortKey(text, bytes(), capacity());
    }
    key.resize(static_cast<std::size_t>(length));
    return key;
}

} // namespace orvane
