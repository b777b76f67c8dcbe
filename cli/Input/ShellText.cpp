// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/ShellText.h"

#include "Terminal/TextWidth.h"

#include <algorithm>

namespace orvane {

namespace {

/// Letters of other scripts mean nothing to a shell.
bool isPlainForShells(char c)
{
    constexpr std::string_view plain = "_-+.,:/@%";
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           static_cast<unsigned char>(c) >= 0x80 || plain.find(c) != std::string_view::npos;
}

} // namespace

std::string shellArgument(std::string_view text)
{
    const std::string shown = printable(text);
    if (!shown.empty() && std::ranges::all_of(shown, isPlainForShells))
        return shown;
    // What still means something between double quotes.
    if (shown.find_first_of("\"$`\\!") == std::string::npos)
        return "\"" + shown + "\"";
    std::string quoted = "'";
    for (const char c : shown)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

} // namespace orvane
