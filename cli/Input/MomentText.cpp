// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/MomentText.h"

#include "Time/TypedDay.h"

namespace orvane {

Result<TypedMoment, std::string> readMoment(std::string_view text, const UserTime &time)
{
    if (const auto moment = TypedMoment::parse(text, time))
        return *moment;
    return failure("\"" + std::string(text) +
                   "\" is not a time. Type 930, 9:30, now, -15 (15 minutes ago), \"2026-03-01 9:30\" " +
                   "or 2026-03-01T09:30:00Z.");
}

Result<DayKey, std::string> readDay(std::string_view text, const UserTime &time)
{
    if (const auto day = parseTypedDay(text, time.today()))
        return *day;
    return failure("\"" + std::string(text) +
                   "\" is not a day. Type 2026-03-01, today, yesterday or the name of a weekday.");
}

} // namespace orvane
