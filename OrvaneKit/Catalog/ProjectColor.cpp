// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/ProjectColor.h"

#include <array>

namespace orvane {

std::string newProjectColor(std::size_t projectsSoFar)
{
    static constexpr std::array<const char *, 10> palette{"#3b82f6", "#10b981", "#f59e0b", "#ef4444",
                                                          "#8b5cf6", "#ec4899", "#14b8a6", "#f97316",
                                                          "#6366f1", "#84cc16"};
    return palette[projectsSoFar % palette.size()];
}

} // namespace orvane
