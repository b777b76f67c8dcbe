// SPDX-License-Identifier: GPL-3.0-or-later
#include "Security/RandomText.h"

#include "Support/Require.h"

#include <sodium.h>

namespace orvane::server {

namespace {

void readySodium()
{
    static const bool ready = sodium_init() >= 0;
    ORVANE_REQUIRE(ready, "libsodium finds no source of randomness");
}

const unsigned char *bytesOf(std::string_view text)
{
    return reinterpret_cast<const unsigned char *>(text.data());
}

} // namespace

std::string base64UrlText(std::string_view data)
{
    constexpr int variant = sodium_base64_VARIANT_URLSAFE_NO_PADDING;
    std::string text(sodium_base64_ENCODED_LEN(data.size(), variant), '\0');
    sodium_bin2base64(text.data(), text.size(), bytesOf(data), data.size(), variant);
    text.pop_back(); // the terminating NUL that the length counts
    return text;
}

std::optional<std::string> fromBase64UrlText(std::string_view text)
{
    std::string data(text.size(), '\0');
    std::size_t size = 0;
    if (sodium_base642bin(reinterpret_cast<unsigned char *>(data.data()), data.size(), text.data(),
                          text.size(), nullptr, &size, nullptr,
                          sodium_base64_VARIANT_URLSAFE_NO_PADDING) != 0)
        return std::nullopt;
    data.resize(size);
    return data;
}

std::string randomText(std::size_t bytes)
{
    readySodium();
    std::string data(bytes, '\0');
    randombytes_buf(data.data(), data.size());
    return base64UrlText(data);
}

std::string newIdentifier()
{
    readySodium();
    unsigned char bytes[16];
    randombytes_buf(bytes, sizeof bytes);
    bytes[6] = static_cast<unsigned char>((bytes[6] & 0x0fU) | 0x40U);
    bytes[8] = static_cast<unsigned char>((bytes[8] & 0x3fU) | 0x80U);
    std::string text;
    for (std::size_t i = 0; i < sizeof bytes; ++i) {
        constexpr char digits[] = "0123456789abcdef";
        if (i == 4 || i == 6 || i == 8 || i == 10)
            text += '-';
        text += digits[bytes[i] >> 4U];
        text += digits[bytes[i] & 0x0fU];
    }
    return text;
}

std::string digestText(std::string_view data)
{
    std::string digest(crypto_hash_sha256_BYTES, '\0');
    crypto_hash_sha256(reinterpret_cast<unsigned char *>(digest.data()), bytesOf(data), data.size());
    return base64UrlText(digest);
}

bool sameSecret(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && sodium_memcmp(a.data(), b.data(), a.size()) == 0;
}

} // namespace orvane::server
