// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/DayFigures.h"

#include <array>
#include <utility>

namespace orvane {

std::string dayFigures(DayKey day, std::string_view format)
{
    const std::string iso = day.description();
    const std::size_t dayAt = iso.size() - 2;
    const std::size_t monthAt = iso.size() - 5;
    std::string text(format);
    for (const auto &[field, figures] : {std::pair{std::string_view("yyyy"), iso.substr(0, monthAt - 1)},
                                         std::pair{std::string_view("MM"), iso.substr(monthAt, 2)},
                                         std::pair{std::string_view("dd"), iso.substr(dayAt)}}) {
        const std::size_t at = text.find(field);
        if (at == std::string::npos)
            return iso;
        text.replace(at, field.size(), figures);
    }
    return text;
}

} // namespace orvane
