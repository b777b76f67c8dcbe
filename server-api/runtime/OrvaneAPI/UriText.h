// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// Percent-encoding of the pieces of an address. All functions may be called from any thread.
namespace orvane {

/// Every byte but letters, digits and "-._~" as %XX, so that the text can stand in a path or in a query.
std::string percentEncoded(std::string_view text);
void appendPercentEncoded(std::string &out, std::string_view text);

/// The reverse. Nothing for a "%" without two hexadecimal digits, or for bytes that are not valid UTF-8. A
/// "+" is itself.
std::optional<std::string> percentDecoded(std::string_view text);

using QueryPairs = std::vector<std::pair<std::string, std::string>>;

/// The decoded pairs of a query ("a=1&b=x%20y", without the "?"), in their order; a piece without "=" has an
/// empty value. Nothing when one of them is badly encoded.
std::optional<QueryPairs> parseQuery(std::string_view query);

} // namespace orvane
