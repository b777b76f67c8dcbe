// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Time/AppClock.h"

#include <chrono>

namespace orvane::testing {

/// Puts the product's clock to the last Wednesday noon for one test: what the test makes some hours before
/// now lies in the week that is loaded, also on the first morning of a week. The server keeps the computer's
/// time.
class MidweekClock {
public:
    MidweekClock()
    {
        using namespace std::chrono;
        const auto today = floor<days>(AppClock::now());
        const days since = weekday(today) - Wednesday;
        const auto noon = today - (since == days{0} ? days{7} : since) + hours{12};
        AppClock::setNow(noon);
    }
    ~MidweekClock() { OffsetBox::shared().setOffset(0); }
    MidweekClock(const MidweekClock &) = delete;
    MidweekClock &operator=(const MidweekClock &) = delete;
};

} // namespace orvane::testing
