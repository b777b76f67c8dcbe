// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// How a piece of text stands out.
struct TextStyle {
    bool bold = false;
    bool dim = false;
    enum class Colour { none, green, yellow, red } colour = Colour::none;
    /// A colour of its own (0xRRGGBB): as near as the terminal comes to it. Of the basic colours `colour`
    /// goes first.
    std::optional<std::uint32_t> ownColour = {};

    bool operator==(const TextStyle &) const = default;
};

/// What a line is about, and what only goes with it.
inline constexpr TextStyle strong{.bold = true};
inline constexpr TextStyle quiet{.dim = true};

/// What the place that text goes to can show.
struct TerminalStyle {
    /// Columns; 0 when lines may be as long as they like (a file, a pipe).
    int width = 0;
    bool isTerminal = false;
    /// Bold, dim and the basic colours.
    bool hasColour = false;
    bool hasAllColours = false;
    /// The palette of 256.
    bool hasPalette = false;

    /// Asks the system and the environment (NO_COLOR, TERM, COLORTERM, COLUMNS) about an open descriptor.
    static TerminalStyle of(int descriptor);

    /// The text with what switches the style on and off around it, as far as the terminal has it.
    std::string apply(std::string_view text, const TextStyle &style) const;
};

/// "#rrggbb" as a number; nothing for other text.
std::optional<std::uint32_t> colourFromText(std::string_view text);

} // namespace orvane
