// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/PartMinutes.h"

#include "Suggestions/SplitMath.h"

#include <numeric>

namespace orvane {

std::vector<std::int64_t> partMinutes(const std::vector<std::int64_t> &seconds)
{
    return SplitMath::apportion(seconds,
                                std::accumulate(seconds.begin(), seconds.end(), std::int64_t{0}) / 60);
}

} // namespace orvane
