// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/TerminalStyle.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>

namespace orvane {

namespace {

std::string_view variable(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : std::string_view();
}

int widthOf(int descriptor)
{
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    int columns = 0;
    const std::string_view text = variable("COLUMNS");
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
    return error == std::errc() && columns > 0 && columns < 10'000 ? columns : 80;
}

struct Shade {
    int red = 0;
    int green = 0;
    int blue = 0;

    explicit Shade(std::uint32_t rgb)
        : red(static_cast<int>(rgb >> 16 & 0xFF))
        , green(static_cast<int>(rgb >> 8 & 0xFF))
        , blue(static_cast<int>(rgb & 0xFF))
    {
    }

    int distance(const Shade &other) const
    {
        const auto square = [](int number) { return number * number; };
        return square(red - other.red) + square(green - other.green) + square(blue - other.blue);
    }
};

/// The nearest colour of the palette's cube of six shades each.
std::string paletteCode(std::uint32_t rgb)
{
    static constexpr std::array levels{0, 95, 135, 175, 215, 255};
    const auto nearest = [](int value) {
        const auto isNearer = [value](int one, int other) {
            return std::abs(one - value) < std::abs(other - value);
        };
        return static_cast<int>(std::ranges::min_element(levels, isNearer) - levels.begin());
    };
    const Shade shade(rgb);
    constexpr int cube = 16;
    return "38;5;" +
           std::to_string(cube + 36 * nearest(shade.red) + 6 * nearest(shade.green) + nearest(shade.blue));
}

/// The nearest of the six basic colours, as terminals commonly draw them.
std::string basicCode(std::uint32_t rgb)
{
    static constexpr std::array<std::uint32_t, 6> colours{0xCD3131, 0x0DBC79, 0xE5E510,
                                                          0x2472C8, 0xBC3FBC, 0x11A8CD};
    const Shade shade(rgb);
    const auto isNearer = [&](std::uint32_t one, std::uint32_t other) {
        return shade.distance(Shade(one)) < shade.distance(Shade(other));
    };
    constexpr int red = 31;
    return std::to_string(red + (std::ranges::min_element(colours, isNearer) - colours.begin()));
}

void appendCode(std::string &codes, std::string_view code)
{
    if (!codes.empty())
        codes += ';';
    codes += code;
}

} // namespace

TerminalStyle TerminalStyle::of(int descriptor)
{
    TerminalStyle style;
    style.isTerminal = isatty(descriptor) == 1;
    if (!style.isTerminal)
        return style;
    style.width = widthOf(descriptor);
    const std::string_view term = variable("TERM");
    style.hasColour = variable("NO_COLOR").empty() && !term.empty() && term != "dumb";
    const std::string_view colours = variable("COLORTERM");
    style.hasAllColours = style.hasColour && (colours == "truecolor" || colours == "24bit");
    style.hasPalette = style.hasColour && term.find("256color") != std::string_view::npos;
    return style;
}

std::string TerminalStyle::apply(std::string_view text, const TextStyle &style) const
{
    if (!hasColour || text.empty())
        return std::string(text);
    std::string codes;
    if (style.bold)
        appendCode(codes, "1");
    if (style.dim)
        appendCode(codes, "2");
    switch (style.colour) {
    case TextStyle::Colour::none:
        break;
    case TextStyle::Colour::green:
        appendCode(codes, "32");
        break;
    case TextStyle::Colour::yellow:
        appendCode(codes, "33");
        break;
    case TextStyle::Colour::red:
        appendCode(codes, "31");
        break;
    }
    if (style.ownColour && hasAllColours) {
        const Shade shade(*style.ownColour);
        appendCode(codes, "38;2;" + std::to_string(shade.red) + ";" + std::to_string(shade.green) + ";" +
                              std::to_string(shade.blue));
    } else if (style.ownColour && hasPalette) {
        appendCode(codes, paletteCode(*style.ownColour));
    } else if (style.ownColour && style.colour == TextStyle::Colour::none) {
        appendCode(codes, basicCode(*style.ownColour));
    }
    if (codes.empty())
        return std::string(text);
    return "\x1b[" + codes + "m" + std::string(text) + "\x1b[0m";
}

std::optional<std::uint32_t> colourFromText(std::string_view text)
{
    std::uint32_t rgb = 0;
    if (text.size() != 7 || text[0] != '#')
        return {};
    const auto [end, error] = std::from_chars(text.data() + 1, text.data() + 7, rgb, 16);
    if (error != std::errc() || end != text.data() + 7)
        return {};
    return rgb;
}

} // namespace orvane
