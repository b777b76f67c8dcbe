// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/WeekCalendar.h"

#include "Catalog/Catalog.h"
#include "Support/DateText.h"
#include "Terminal/TextWidth.h"
#include "Time/AppClock.h"

#include <gtest/gtest.h>
#include <sstream>

namespace orvane {
namespace {

const DayKey monday = DayKey::parse("2026-03-02").value();

Instant at(std::string_view text)
{
    return instantFromIso8601(std::string("2026-03-").append(text).append(":00Z")).value();
}

TimeEntryResponse entry(const char *title, const char *start, const char *stop, const char *description = "")
{
    TimeEntryResponse made;
    made.id = title;
    made.description = description;
    made.start = at(start);
    if (stop)
        made.stop = at(stop);
    return made;
}

WeekCalendar::Label label(const TimeEntryResponse &made)
{
    return {.title = made.id, .detail = made.description, .colour = 0x3b82f6};
}

TerminalStyle terminal(int width)
{
    return {.width = width, .isTerminal = true};
}

std::string drawn(const std::vector<TimeEntryResponse> &entries, const TerminalStyle &style,
                  const UserTime &time = UserTime::utc())
{
    const auto days = CalendarLayout::days(entries, monday, monday.adding(6), time, at("04T11:00"));
    return "\n" + WeekCalendar(time, style, label).text(days, {5400, 0, 0, 0, 0, 0, 0});
}

const std::vector<TimeEntryResponse> week{
    entry("Website", "02T09:00", "02T11:00", "Write the README"),
    entry("Library of everything", "02T11:00", "02T11:30"),
    entry("A", "02T11:05", "02T11:10"),
    entry("Night", "03T13:00", "04T10:00", "Watch"),
    entry("Now", "04T10:00", nullptr, "日本語のテキスト"),
    entry("a", "05T09:00", "05T09:10"),
    entry("b", "05T09:10", "05T09:20"),
    entry("c", "05T09:00", "05T10:00"),
    entry("d", "05T09:02", "05T09:03"),
    entry("e", "05T09:00", "05T09:01"),
};

TEST(WeekCalendarTest, DrawsEntriesAsBoxesByTheHour)
{
    AppClock::setNow(at("04T11:00"));
    const std::vector<TimeEntryResponse> daytime{
        week[0], week[1], week[2], week[4],
        week[5], week[6], week[7], entry("Call", "06T09:00", "06T10:00", "Acme")};
    EXPECT_EQ(drawn(daytime, terminal(80)), R"(
      Mon 2     Tue 3     Wed 4     Thu 5     Fri 6     Sat 7     Sun 8
      1:30:00   –         –         –         –         –         –
09:00 ┌Website┐ ·         ·         [a][b]┌c┐ ┌Call───┐ ·         ·
      │Write  │                           └─┘ └Acme───┘
10:00 │the    │ ·         ┌Now────┐ ·         ·         ·         ·
      └README─┘           └╌╌╌╌╌╌╌┘
11:00 [L…][A  ] ·         ·         ·         ·         ·         ·

12:00 ·         ·         ·         ·         ·         ·         ·

13:00 ·         ·         ·         ·         ·         ·         ·

14:00 ·         ·         ·         ·         ·         ·         ·

Total 1:30:00   orvane list --day DAY shows the entries of one day.
)");
}

TEST(WeekCalendarTest, DrawsNightsInOneRowAnHourAndCountsWhatHasNoRoom)
{
    AppClock::setNow(at("04T11:00"));
    const std::string text = drawn(week, terminal(80), UserTime::make("Etc/UTC", 1, true).value());
    const auto lineOf = [&](const std::string &hour) {
        const std::size_t from = text.find(hour);
        return from == std::string::npos ? "" : text.substr(from, text.find('\n', from) - from);
    };
    EXPECT_EQ(lineOf(" 1 pm"), " 1 pm ·         ┌Night──┐ ·         ·         ·         ·         ·");
    EXPECT_EQ(lineOf("11 pm"), "11 pm ·         │       │ ·         ·         ·         ·         ·");
    EXPECT_EQ(lineOf("12 am"), "12 am ·         ·         │Night  │ ·         ·         ·         ·");
    EXPECT_EQ(lineOf(" 1 am"), " 1 am ·         ·         │Watch  │ ·         ·         ·         ·");
    EXPECT_EQ(lineOf(" 9 am"), " 9 am ┌Website┐ ·         └───────┘ [e][a]+3  ·         ·         ·");
}

TEST(WeekCalendarTest, FitsTheTerminal)
{
    for (int width = 80; width < 220; width += 7) {
        std::istringstream lines(drawn(week, terminal(width)));
        for (std::string line; std::getline(lines, line);)
            ASSERT_LE(displayWidth(line), width) << line;
    }
    const TerminalStyle colour{.width = 80, .isTerminal = true, .hasColour = true, .hasAllColours = true};
    EXPECT_NE(drawn(week, colour).find("\x1b[38;2;59;130;246m[\x1b[0m\x1b[1mNow    \x1b[0m"),
              std::string::npos);
    EXPECT_FALSE(WeekCalendar::fits(terminal(79)));
    EXPECT_FALSE(WeekCalendar::fits(TerminalStyle{.width = 0}));
    EXPECT_TRUE(WeekCalendar::fits(terminal(80)));
}

} // namespace
} // namespace orvane
