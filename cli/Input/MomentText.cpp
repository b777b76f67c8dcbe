// SPDX-License-Identifier: GPL-3.0-or-later
#include "Input/MomentText.h"

#include "EntryInput/NamedMoment.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"
#include "Time/TypedDay.h"

namespace orvane {

Result<TypedMoment, std::string> readMoment(std::string_view text, const EntrySentence::Options &options,
                                            const UserTime &time)
{
    if (const auto moment = readNamedMoment(text, options, time, AppClock::now()))
        return *moment;
    return failure("\"" + printable(text) +
                   "\" is not a time. Type 930, 9:30, now, -15 (15 minutes ago), \"yesterday 9:30\", " +
                   "\"2026-03-01 9:30\" or 2026-03-01T09:30:00Z.");
}

Result<DayKey, std::string> readDay(std::string_view text, const UserTime &time)
{
    if (const auto day = parseTypedDay(text, time.today()))
        return *day;
    return failure("\"" + std::string(text) +
                   "\" is not a day. Type 2026-03-01, today, yesterday or the name of a weekday.");
}

} // namespace orvane
