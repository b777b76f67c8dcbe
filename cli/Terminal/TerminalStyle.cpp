// SPDX-License-Identifier: GPL-3.0-or-later
#include "Terminal/TerminalStyle.h"

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
        const std::uint32_t rgb = *style.ownColour;
        appendCode(codes, "38;2;" + std::to_string(rgb >> 16 & 0xFF) + ";" + std::to_string(rgb >> 8 & 0xFF) +
                              ";" + std::to_string(rgb & 0xFF));
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
