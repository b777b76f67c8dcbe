// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// Unguessable texts and digests, on libsodium. Any thread.
namespace orvane::server {

/// `bytes` random bytes as base64url without padding.
std::string randomText(std::size_t bytes);
/// A random identifier in UUID form (version 4, lower case).
std::string newIdentifier();
/// SHA-256 as base64url without padding.
std::string digestText(std::string_view data);
std::string base64UrlText(std::string_view data);
/// Nothing for any other text than one that the above gives.
std::optional<std::string> fromBase64UrlText(std::string_view text);
/// Compares without telling by its duration where two texts part.
bool sameSecret(std::string_view a, std::string_view b);

} // namespace orvane::server
