// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <string_view>

namespace orvane {

/// A short digest (FNV-1a) that tells texts apart which nobody chose to be alike; the same on every computer,
/// so it can be kept. Never negative, since it is written as a JSON number. Any thread.
constexpr std::int64_t textDigest(std::string_view text)
{
    std::uint64_t hash = 0xCBF2'9CE4'8422'2325U;
    for (const char byte : text)
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100'0000'01B3U;
    return static_cast<std::int64_t>(hash >> 1U);
}

} // namespace orvane
