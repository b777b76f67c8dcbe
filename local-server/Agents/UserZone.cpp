// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/UserZone.h"

#include "Support/DateText.h"
#include "Time/ZoneRules.h"

namespace orvane::server {

namespace {

using namespace std::chrono;

/// "+01:00". What a zone's clock had in seconds, before 1972, is cut.
std::string offsetText(seconds offset)
{
    const auto whole = duration_cast<minutes>(abs(offset)).count();
    const auto twoDigits = [](std::int64_t number) {
        return (number < 10 ? "0" : "") + std::to_string(number);
    };
    return (offset < 0s ? "-" : "+") + twoDigits(whole / 60) + ":" + twoDigits(whole % 60);
}

} // namespace

UserZone::UserZone(std::string_view name) : m_rules(ZoneRules::find(name))
{
    if (!m_rules)
        m_rules = ZoneRules::find("UTC");
}

const std::string &UserZone::name() const
{
    return m_rules->identifier();
}

ZonedTime UserZone::time(Instant instant) const
{
    const seconds offset = duration_cast<minutes>(m_rules->offset(instant));
    // As if the wall clock's time were one of UTC; the milliseconds go where there are none.
    std::string text = iso8601Text(instant + offset);
    text.pop_back();
    if (text.ends_with(".000"))
        text.resize(text.size() - 4);
    return {text + offsetText(offset)};
}

year_month_day UserZone::day(Instant instant) const
{
    return year_month_day{floor<days>(m_rules->localTime(instant))};
}

Instant UserZone::startOf(year_month_day day) const
{
    return m_rules->firstInstant(LocalTime{local_days{day}.time_since_epoch()});
}

} // namespace orvane::server
