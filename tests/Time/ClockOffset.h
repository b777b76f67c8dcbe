// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/DateText.h"
#include "Time/AppClock.h"

#include <gtest/gtest.h>

namespace orvane {

/// Moves the product's clock to an instant for one test.
class ClockOffset {
public:
    explicit ClockOffset(std::string_view iso) { AppClock::setNow(instantFromIso8601(iso).value()); }
    ~ClockOffset() { OffsetBox::shared().setOffset(0); }
    ClockOffset(const ClockOffset &) = delete;
    ClockOffset &operator=(const ClockOffset &) = delete;
};

} // namespace orvane
