// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/SplitMoment.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane {

std::optional<SplitMoment> SplitMoment::within(Instant start, Instant end)
{
    return SplitMoment(start, end, start).movedInto(start, end).transform([](SplitMoment moment) {
        moment.moveTo(0.5);
        return moment;
    });
}

std::optional<SplitMoment> SplitMoment::movedInto(Instant start, Instant end) const
{
    SplitMoment moment(start, end, m_at);
    if (moment.first() > moment.last())
        return std::nullopt;
    moment.set(m_at);
    return moment;
}

Instant SplitMoment::first() const
{
    return std::chrono::floor<std::chrono::minutes>(m_start) + std::chrono::minutes{1};
}

Instant SplitMoment::last() const
{
    return std::chrono::ceil<std::chrono::minutes>(m_end) - std::chrono::minutes{1};
}

void SplitMoment::set(Instant at)
{
    m_at = std::clamp<Instant>(std::chrono::floor<std::chrono::minutes>(at), first(), last());
}

double SplitMoment::positionOf(Instant instant) const
{
    return std::chrono::duration<double>(instant - m_start) / std::chrono::duration<double>(m_end - m_start);
}

void SplitMoment::nudge(std::chrono::minutes by)
{
    set(m_at + by);
}

void SplitMoment::moveTo(double position)
{
    const auto whole = std::chrono::duration<double, std::milli>(m_end - m_start);
    const double into = std::clamp(position, 0.0, 1.0) * whole.count();
    set(std::chrono::round<std::chrono::minutes>(m_start + std::chrono::milliseconds{std::llround(into)}));
}

bool SplitMoment::take(const TypedMoment &typed, const UserTime &time)
{
    std::optional<Instant> found;
    const auto offer = [&](Instant at) {
        at = std::chrono::floor<std::chrono::minutes>(at);
        const bool isWithin = at >= first() && at <= last();
        if (isWithin && (!found || std::chrono::abs(at - m_at) < std::chrono::abs(*found - m_at)))
            found = at;
    };
    if (!typed.clock)
        offer(typed.instant);
    for (DayKey day = time.dayKey(m_start); typed.clock && day <= time.dayKey(m_end); day = day.adding(1))
        offer(time.date(day, *typed.clock));
    if (found)
        m_at = *found;
    return found.has_value();
}

std::vector<Instant> SplitMoment::roundTimes(const UserTime &time) const
{
    constexpr std::array steps{1, 5, 15, 30, 60, 120, 180, 360, 720, 1440};
    constexpr int mostTimes = 6;
    const auto length = std::chrono::duration_cast<std::chrono::minutes>(m_end - m_start);
    const auto found = std::ranges::find_if(
        steps, [&](int step) { return length / std::chrono::minutes{step} < mostTimes; });
    // Of weeks at once no time of day is worth a mark.
    if (found == steps.end())
        return {};
    std::vector<Instant> times;
    const int ahead = *found - static_cast<int>(time.minuteOfDay(m_start)) % *found;
    for (Instant at = std::chrono::floor<std::chrono::minutes>(m_start) + std::chrono::minutes{ahead};
         at < m_end; at += std::chrono::minutes{*found})
        times.push_back(at);
    return times;
}

} // namespace orvane
