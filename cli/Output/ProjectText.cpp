// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/ProjectText.h"

#include "Terminal/TextWidth.h"

namespace orvane {

TextCell colouredName(std::string_view name, std::string_view colour, const TerminalStyle &style,
                      TextStyle nameStyle)
{
    TextCell cell;
    if (const auto own = style.hasColour ? colourFromText(colour) : std::nullopt)
        cell.runs.push_back({"● ", {.ownColour = own}});
    cell.runs.push_back({printable(name), nameStyle});
    return cell;
}

} // namespace orvane
