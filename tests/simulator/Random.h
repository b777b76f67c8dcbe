// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>

namespace orvane::simulator {

/// Numbers that follow from a seed alone, the same with every library (SplitMix64).
class Random {
public:
    explicit Random(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next()
    {
        std::uint64_t z = (m_state += 0x9E37'79B9'7F4A'7C15U);
        z = (z ^ (z >> 30U)) * 0xBF58'476D'1CE4'E5B9U;
        z = (z ^ (z >> 27U)) * 0x94D0'49BB'1331'11EBU;
        return z ^ (z >> 31U);
    }
    /// 0 up to but not including `limit`, which is above 0.
    std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }
    std::int64_t between(std::int64_t from, std::int64_t to)
    {
        return from + static_cast<std::int64_t>(below(static_cast<std::size_t>(to - from + 1)));
    }
    /// True that often in a hundred.
    bool chance(int percent) { return below(100) < static_cast<std::size_t>(percent); }

private:
    std::uint64_t m_state;
};

} // namespace orvane::simulator
