// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/KnownDays.h"

#include <algorithm>

namespace orvane {

namespace {

/// Of days beside the window no more are kept, so that a process that lives long does not ask for all that
/// was ever looked at again and again.
constexpr int keptBeside = 62;

} // namespace

DaySpan DaySpan::of(const UserTime &time, DayKey first, int count)
{
    return {first, count, {time.startOfDay(first), time.startOfDay(first.adding(count))}};
}

DaySpan DaySpan::weeks(const UserTime &time, DayKey day, int before)
{
    return of(time, time.weekStartContaining(day).adding(std::int64_t{-7} * before), 7 * (before + 1));
}

bool DaySpan::contains(DayKey day) const
{
    return day >= first && day < first.adding(count);
}

bool KnownDays::contains(DayKey first, int count) const
{
    const auto isKnown = [this](DayKey day) {
        return (m_window && m_window->days.contains(day)) ||
               std::ranges::any_of(m_beside, [&](const Asked &asked) { return asked.days.contains(day); });
    };
    for (int i = 0; i < count; ++i) {
        if (!isKnown(first.adding(i)))
            return false;
    }
    return true;
}

bool KnownDays::contains(Instant start) const
{
    return (m_window && m_window->days.interval.contains(start)) ||
           std::ranges::any_of(m_beside,
                               [&](const Asked &asked) { return asked.days.interval.contains(start); });
}

void KnownDays::setWindow(DaySpan days, AnswerMark answer)
{
    m_window = Asked{days, answer};
}

void KnownDays::extend(DaySpan before, AnswerMark answer)
{
    if (!m_window || before.interval.to != m_window->days.interval.from)
        return add(before, answer);
    DaySpan &days = m_window->days;
    days = {before.first, before.count + days.count, {before.interval.from, days.interval.to}};
}

void KnownDays::add(DaySpan days, AnswerMark answer)
{
    std::erase_if(m_beside, [&](const Asked &asked) {
        return days.contains(asked.days.first) &&
               days.contains(asked.days.first.adding(asked.days.count - 1));
    });
    m_beside.push_back({days, answer});
    int kept = 0;
    for (const Asked &asked : m_beside)
        kept += asked.days.count;
    while (kept > keptBeside && m_beside.size() > 1) {
        kept -= m_beside.front().days.count;
        m_beside.erase(m_beside.begin());
    }
}

void KnownDays::clear()
{
    m_window.reset();
    m_beside.clear();
}

} // namespace orvane
