// SPDX-License-Identifier: GPL-3.0-or-later
#include "Time/AppClock.h"

#include "Support/Require.h"

#include <atomic>
#include <cmath>
#include <limits>

namespace orvane {

namespace {

std::atomic<Instant (*)()> madeUpSource = nullptr;

Instant systemNow()
{
    if (const auto source = madeUpSource.load())
        return source();
    return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
}

constexpr std::int64_t notHeld = std::numeric_limits<std::int64_t>::min();
/// Where a ClockHold made the clock stand, in milliseconds since 1970.
std::atomic<std::int64_t> heldAt = notHeld;

} // namespace

OffsetBox &OffsetBox::shared()
{
    static OffsetBox box;
    return box;
}

double OffsetBox::offset() const
{
    const std::lock_guard lock(m_lock);
    return m_offset;
}

void OffsetBox::setOffset(double seconds)
{
    ORVANE_REQUIRE(std::isfinite(seconds) &&
                       std::abs(seconds) <= secondsBetween(earliestInstant, instantLimit),
                   "a clock offset out of range");
    const std::lock_guard lock(m_lock);
    m_offset = seconds;
}

Instant AppClock::now()
{
    if (const std::int64_t held = heldAt; held != notHeld)
        return Instant{std::chrono::milliseconds{held}};
    const std::chrono::microseconds offset{std::llround(OffsetBox::shared().offset() * 1e6)};
    return millisecondsFloor(systemNow() + offset);
}

void AppClock::setNow(Instant instant)
{
    OffsetBox::shared().setOffset(secondsBetween(systemNow(), instant));
}

void AppClock::setSource(Instant (*source)())
{
    madeUpSource = source;
}

ClockHold::ClockHold() : m_since(std::chrono::steady_clock::now()), m_isOutermost(heldAt == notHeld)
{
    if (m_isOutermost)
        heldAt = millisecondsSinceEpoch(AppClock::now());
}

ClockHold::~ClockHold()
{
    if (m_isOutermost)
        heldAt = notHeld;
}

std::chrono::milliseconds ClockHold::held() const
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::steady_clock::now() - m_since);
}

} // namespace orvane
