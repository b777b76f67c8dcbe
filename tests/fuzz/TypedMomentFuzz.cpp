// SPDX-License-Identifier: GPL-3.0-or-later
// Any two lines: typed as the start and the stop of an entry they either make no times or some that make
// sense, and white space around them plays no part.
#include "EntryInput/EntryTimes.h"
#include "EntryInput/NamedMoment.h"
#include "Support/Require.h"
#include "Time/AppClock.h"
#include "Time/TypedDay.h"

#include <string>

namespace {

using namespace orvane;
using std::chrono::hours;

/// The day on which this zone's clocks are set back.
const Instant now = std::chrono::sys_days{std::chrono::year{2026} / 10 / 25} + hours{1};

void checkDay(std::string_view text, DayKey today)
{
    if (const auto day = parseTypedDay(text, today))
        ORVANE_REQUIRE(day->isValid(), "no day");
}

void checkTimes(TypedMoment start, TypedMoment stop, const UserTime &time)
{
    const bool isClocks = start.clock && stop.clock;
    if (const auto made = EntryTimes::made(start, stop, time, now)) {
        ORVANE_REQUIRE(made->stop && *made->stop > made->start, "ends before it starts");
        ORVANE_REQUIRE(!isClocks || *made->stop - made->start <= hours{25}, "longer than a day");
    }
    const Instant since = EntryTimes::timerStart(start, time, now);
    const Instant end = EntryTimes::timerStop(stop, since, time, now);
    ORVANE_REQUIRE(!stop.clock ||
                       time.timeOfDay(end) == time.timeOfDay(time.date(time.dayKey(end), *stop.clock)),
                   "another time of day");
    if (const auto changed = EntryTimes{since, now}.changed(start, stop, time, now))
        ORVANE_REQUIRE(changed->stop && *changed->stop > changed->start, "ends before it starts");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const UserTime time = UserTime::make("Europe/Paris").value();
    // An age is counted from the clock, which has to stand still for two readings to be one.
    const ClockHold hold;
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const std::size_t end = std::min(text.find('\n'), text.size());
    checkDay(text, time.dayKey(now));
    const auto start = TypedMoment::parse(text.substr(0, end), time);
    ORVANE_REQUIRE(TypedMoment::parse(" " + std::string(text.substr(0, end)) + "\t", time) == start,
                   "white space counts");
    const auto stop = TypedMoment::parse(text.substr(std::min(end + 1, text.size())), time);
    const auto named = readNamedMoment(text.substr(0, end), {}, time, now);
    ORVANE_REQUIRE(!start || named == start, "a moment without its day is another");
    if (start && stop)
        checkTimes(*start, *stop, time);
    return 0;
}
