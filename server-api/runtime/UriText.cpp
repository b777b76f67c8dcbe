// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/UriText.h"

#include <simdjson.h>

namespace orvane {

namespace {

bool isUnreserved(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '.' || c == '_' || c == '~';
}

std::optional<unsigned> hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return static_cast<unsigned>(c - '0');
    if (c >= 'a' && c <= 'f')
        return static_cast<unsigned>(c - 'a' + 10);
    if (c >= 'A' && c <= 'F')
        return static_cast<unsigned>(c - 'A' + 10);
    return std::nullopt;
}

} // namespace

void appendPercentEncoded(std::string &out, std::string_view text)
{
    constexpr char hex[] = "0123456789ABCDEF";
    for (const char c : text) {
        if (isUnreserved(c)) {
            out += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        out += '%';
        out += hex[byte >> 4U];
        out += hex[byte & 15U];
    }
}

std::string percentEncoded(std::string_view text)
{
    std::string out;
    appendPercentEncoded(out, text);
    return out;
}

std::optional<std::string> percentDecoded(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            out += text[i];
            continue;
        }
        if (text.size() - i < 3)
            return std::nullopt;
        const auto high = hexDigit(text[i + 1]);
        const auto low = hexDigit(text[i + 2]);
        if (!high || !low)
            return std::nullopt;
        out += static_cast<char>(*high * 16 + *low);
        i += 2;
    }
    if (!simdjson::validate_utf8(out.data(), out.size()))
        return std::nullopt;
    return out;
}

std::optional<QueryPairs> parseQuery(std::string_view query)
{
    QueryPairs pairs;
    while (!query.empty()) {
        const std::string_view piece = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(piece.size() + 1, query.size()));
        if (piece.empty())
            continue;
        const std::size_t equals = std::min(piece.find('='), piece.size());
        auto name = percentDecoded(piece.substr(0, equals));
        auto value = percentDecoded(piece.substr(std::min(equals + 1, piece.size())));
        if (!name || !value)
            return std::nullopt;
        pairs.emplace_back(std::move(*name), std::move(*value));
    }
    return pairs;
}

} // namespace orvane
