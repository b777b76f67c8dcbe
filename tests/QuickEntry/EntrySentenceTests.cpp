// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/EntrySentence.h"
#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

Instant utc(std::string_view iso)
{
    return instantFromIso8601(iso).value();
}

/// Friday, 7 March 2025, 14:30 and some milliseconds.
constexpr const char *friday = "2025-03-07T14:30:15.250Z";

struct Setting {
    const char *now = friday;
    const char *zone = "Etc/UTC";
    EntrySentence::Options options = {};
};

EntrySentence::Reading readIn(std::string_view line, const Setting &setting = {})
{
    return EntrySentence::read(line, SentenceCatalog(), setting.options, utc(setting.now),
                               UserTime::make(setting.zone).value());
}

/// "description | start - stop", the two as the wall clock of the zone shows them and with the zone's offset
/// left out; "description" alone without a time.
std::string summary(std::string_view line, const Setting &setting = {})
{
    const auto reading = readIn(line, setting);
    if (!reading.time)
        return reading.description;
    const UserTime calendar = UserTime::make(setting.zone).value();
    const auto shown = [&](Instant instant) {
        return calendar.dayKey(instant).description().substr(5) + " " + calendar.clockLabel(instant);
    };
    const auto span = EntrySentence::resolve(*reading.time, reading.day, utc(setting.now), calendar);
    if (!span)
        return "a time that lies nowhere";
    return reading.description + " | " + shown(span->start) + " - " + (span->stop ? shown(*span->stop) : "");
}

const Setting twelveHours = {.options = {.hour12 = true}};

TEST(EntrySentence, ReadsTheWholeLine)
{
    const auto reading = readIn("  Fix  $ the sync\tbug $ 9-10:30 $ ");
    EXPECT_EQ(reading.description, "Fix the sync bug");
    EXPECT_TRUE(reading.isBillable);
    EXPECT_EQ(reading.time, EntrySentence::Time(EntrySentence::Range{{9, 0}, {10, 30}}));
    EXPECT_EQ(reading.timeText, "9-10:30");
    EXPECT_EQ(reading.timeRanges, (std::vector<TextRange>{{24, 31}}));

    EXPECT_EQ(readIn(""), EntrySentence::Reading{});
    const auto plain = readIn("US$ $5 $$");
    EXPECT_EQ(plain.description, "US$ $5 $$");
    EXPECT_FALSE(plain.isBillable);
    // Where the words of the time lie among others, in UTF-16 units.
    const auto split = readIn("🚀 é yesterday  9:00 $ to 10:00");
    EXPECT_EQ(split.timeText, "yesterday 9:00 to 10:00");
    EXPECT_EQ(split.timeRanges, (std::vector<TextRange>{{5, 20}, {23, 31}}));
    EXPECT_EQ(readIn("x 9:00\u202Fpm\u00A0– 10\u00A0p.m.").timeText, "9:00 pm – 10 p.m.");
    EXPECT_EQ(readIn("\xFFx\xC3 2h").description, "\xFFx\xC3");
}

TEST(EntrySentence, ReadsRanges)
{
    for (const char *line : {"x 9-10:30", "x 9\u201310:30", "x 9 - 10:30", "x 9 \u2013 10:30",
                             "x 9:00 to 10:30", "x from 9h to 10h30", "x From 9:00 - 10.30", "x from 9-10:30",
                             "x 9AM TO 10:30", "x 9 am - 10:30 a.m.", "x 0900-10:30"})
        EXPECT_EQ(summary(line), "x | 03-07 09:00 - 03-07 10:30") << line;
    // Two numbers alone could be anything.
    for (const char *line :
         {"Read 3-4", "Read 3 - 4", "Move from 15 to 16", "a-b", "9:00-10:00-11:00", "-9:00", "9:00-",
          "9:00 to", "to 9:00", "from 9:00", "Fix 24:00-25:00", "9:00 ‐ 10:00"})
        EXPECT_EQ(summary(line), line);
    EXPECT_EQ(summary("9-10", {.options = {.bareRanges = true}}), " | 03-07 09:00 - 03-07 10:00");
    // The same minute twice is no range, and no half of it is one.
    for (const char *line : {"x from 9:00 to 9:00", "x 9pm-21:00", "x 2h - 2h"})
        EXPECT_EQ(summary(line), line);
}

TEST(EntrySentence, SharesTheHalfOfTheDay)
{
    EXPECT_EQ(summary("9-10pm"), " | 03-07 21:00 - 03-07 22:00");
    EXPECT_EQ(summary("11-1pm"), " | 03-07 11:00 - 03-07 13:00");
    EXPECT_EQ(summary("9-10 pm"), " | 03-07 21:00 - 03-07 22:00");
    EXPECT_EQ(summary("9:15 to 10 P.M."), " | 03-07 21:15 - 03-07 22:00");
    EXPECT_EQ(summary("12-1pm"), " | 03-07 12:00 - 03-07 13:00");
    EXPECT_EQ(summary("0-1pm"), " | 03-07 12:00 - 03-07 13:00");
    EXPECT_EQ(summary("14-3pm"), " | 03-07 14:00 - 03-07 15:00");
    EXPECT_EQ(summary("2pm-3:30"), " | 03-07 14:00 - 03-07 15:30");
    EXPECT_EQ(summary("9p-11"), " | 03-07 21:00 - 03-07 23:00");
    EXPECT_EQ(summary("9a-11"), " | 03-07 09:00 - 03-07 11:00");
    EXPECT_EQ(summary("11am-1"), " | 03-07 11:00 - 03-08 01:00");
    // A dial has no 0.
    using enum EntrySentence::Meridiem;
    EXPECT_EQ(readIn("0-1pm").time, EntrySentence::Time(EntrySentence::Range{{12, 0, pm}, {1, 0, pm}}));
    EXPECT_EQ(readIn("0:30-1am").time, EntrySentence::Time(EntrySentence::Range{{12, 30, am}, {1, 0, am}}));
    EXPECT_EQ(readIn("0:30-11:30").time, EntrySentence::Time(EntrySentence::Range{{0, 30}, {11, 30}}));
}

TEST(EntrySentence, PrefersTheAfternoonOnATwelveHourClock)
{
    EXPECT_EQ(summary("11:00-1:00", twelveHours), " | 03-07 11:00 - 03-07 13:00");
    EXPECT_EQ(summary("11am-1", twelveHours), " | 03-07 11:00 - 03-07 13:00");
    EXPECT_EQ(summary("9pm-1", twelveHours), " | 03-07 21:00 - 03-08 01:00");
    EXPECT_EQ(summary("12:30-1:30", twelveHours), " | 03-07 12:30 - 03-07 13:30");
    EXPECT_EQ(summary("9:00-10:30", twelveHours), " | 03-07 09:00 - 03-07 10:30");
    EXPECT_EQ(summary("x since 2", twelveHours), "x | 03-07 14:00 - ");
    EXPECT_EQ(summary("x since 2"), "x | 03-07 02:00 - ");
    EXPECT_EQ(summary("x since 2 today", twelveHours), "x | 03-07 14:00 - ");
    EXPECT_EQ(summary("x since 2 am", twelveHours), "x | 03-07 02:00 - ");
    EXPECT_EQ(summary("x since 9:40", twelveHours), "x | 03-07 09:40 - ");
    EXPECT_EQ(summary("x since 2 yesterday", twelveHours), "x | 03-06 02:00 - ");
}

TEST(EntrySentence, ReadsStarts)
{
    EXPECT_EQ(summary("x since 9:40"), "x | 03-07 09:40 - ");
    EXPECT_EQ(summary("x Since 930"), "x | 03-07 09:30 - ");
    EXPECT_EQ(summary("x since 2 PM"), "x | 03-07 14:00 - ");
    EXPECT_EQ(summary("x since 14:30"), "x | 03-07 14:30 - ");
    EXPECT_EQ(summary("x since 14:31"), "x | 03-06 14:31 - "); // later than now
    EXPECT_EQ(summary("x since 22:00 yesterday"), "x | 03-06 22:00 - ");
    EXPECT_EQ(summary("x since yesterday 22:00"), "x | 03-06 22:00 - ");
    EXPECT_EQ(summary("x since on mon 8"), "x | 03-03 08:00 - ");
    // A named day is not moved, and nothing has been running since a later moment.
    for (const char *line : {"x since 22:00 today", "x since 22:00 fri", "x since 9:00 2025-03-08",
                             "x since then", "x since 25", "x since", "since yesterday", "x since 9:60"})
        EXPECT_EQ(summary(line), line);
    EXPECT_EQ(summary("x 45m ago"), "x | 03-07 13:45 - ");
    EXPECT_EQ(summary("x 2 hours 30 minutes AGO"), "x | 03-07 12:00 - ");
    EXPECT_EQ(summary("x yesterday 1h ago"), "x yesterday | 03-07 13:30 - ");
    for (const char *line : {"x 90 ago", "x ago", "x long ago", "x 1h ago yesterday", "x 200000h ago"})
        EXPECT_EQ(summary(line), line);
}

TEST(EntrySentence, ReadsDurations)
{
    const auto seconds = [](std::string_view line) {
        const auto reading = readIn(line);
        const auto *duration = reading.time ? std::get_if<EntrySentence::Duration>(&*reading.time) : nullptr;
        return duration == nullptr || reading.description != "x" ? -1 : duration->seconds;
    };
    for (const char *line : {"x 90m", "x 1.5h", "x 1,5H", "x 1h30", "x 1h30m", "x 1h30min", "x 1h 30m",
                             "x 1 hr 30 mins", "x 1 hour 30 minutes", "x 90 min", "x for 90 Minutes",
                             "x For 1.5 hours", "x 1h 30 min", "x 0.5h60", "x 90.0m"})
        EXPECT_EQ(seconds(line), 5400) << line;
    EXPECT_EQ(seconds("x 0.1m"), 6);
    EXPECT_EQ(seconds("x 1.33h"), 4788);
    for (const char *line : {"x 90",    "x for 90",  "x for 1.5", "x 90s", "x 1d",  "x 2 weeks", "x h",
                             "x 1h300", "x 1h30x",   "x 1.h",     "x .5h", "x 0m",  "x 0h 0m",   "x 1..5h",
                             "x -2h",   "x 100001h", "x 1h30m2",  "x for", "x 2hh", "x 30m2h",   "x 1h30s"})
        EXPECT_EQ(summary(line), line);
    // In the order hours, minutes, each once: what stands before is text.
    EXPECT_EQ(summary("Watch 2 30 minutes"), "Watch 2 | 03-07 14:00 - 03-07 14:30");
    EXPECT_EQ(summary("x 30m 1h"), "x 30m | 03-07 13:30 - 03-07 14:30");
    EXPECT_EQ(summary("x 5h 1h"), "x 5h | 03-07 13:30 - 03-07 14:30");
    EXPECT_EQ(summary("x 2h yesterday"), "x | 03-06 12:30 - 03-06 14:30");
}

TEST(EntrySentence, ReadsDaysBeforeOrAfterTheTime)
{
    for (const char *line :
         {"x yesterday 9-10:00", "x 9-10:00 Yesterday", "x on thu 9:00 to 10:00", "x 9am-10 on thursday",
          "x 2025-03-06 9-10:00", "x 6.3. 9-10:00", "x from 9-10:00 06.03.25", "x 9-10:00 6.3.2025"})
        EXPECT_EQ(summary(line), "x | 03-06 09:00 - 03-06 10:00") << line;
    EXPECT_EQ(summary("x today 9-10:00"), "x | 03-07 09:00 - 03-07 10:00");
    // A weekday is the last one up to today.
    const std::pair<const char *, const char *> weekdays[] = {
        {"sun", "03-02"},   {"Monday", "03-03"}, {"tues", "03-04"},    {"WED", "03-05"},
        {"thurs", "03-06"}, {"fri", "03-07"},    {"saturday", "03-01"}};
    for (const auto &[name, day] : weekdays)
        EXPECT_EQ(summary(std::string("9-10:00 ") + name),
                  " | " + std::string(day) + " 09:00 - " + day + " 10:00");
    // A day alone is no time, and of two days one is text.
    EXPECT_EQ(summary("Plan on monday"), "Plan on monday");
    EXPECT_EQ(summary("x mon 9-10:00 tue"), "x mon | 03-04 09:00 - 03-04 10:00");
    for (const char *day : {"2025-02-30", "2025-3-7-1", "25-3-7", "1.13.", "6.3", "6.3.025", "6/3/",
                            "6/3/025", "32/1", "weds", "tomorrow"})
        EXPECT_EQ(summary(std::string(day) + " 9-10:00"), std::string(day) + " | 03-07 09:00 - 03-07 10:00");
}

TEST(EntrySentence, ReadsSlashDatesAsTheUserWritesThem)
{
    const auto start = [](std::string_view date, const char *format, const char *now = friday) {
        const auto reading = readIn(std::string(date) + " 9-10:00", {now, "Etc/UTC", {.dateFormat = format}});
        const auto *named = reading.day ? std::get_if<EntrySentence::Date>(&*reading.day) : nullptr;
        return named == nullptr ? "none" : named->day.description();
    };
    EXPECT_EQ(start("3/4/24", "dd/MM/yyyy"), "2024-04-03");
    EXPECT_EQ(start("3/4/24", "dd.MM.yyyy"), "2024-04-03");
    EXPECT_EQ(start("3/4/2024", "MM/dd/yyyy"), "2024-03-04");
    EXPECT_EQ(start("3/4/2024", "yyyy-MM-dd"), "2024-03-04");
    EXPECT_EQ(start("3/4/2024", "?"), "2024-04-03");
    EXPECT_EQ(start("25/2", "MM/dd/yyyy"), "2025-02-25"); // possible in one way only
    // Without a year the nearest in the past.
    EXPECT_EQ(start("7/3", "dd/MM/yyyy"), "2025-03-07");
    EXPECT_EQ(start("8/3", "dd/MM/yyyy"), "2024-03-08");
    EXPECT_EQ(start("29.2.", "dd/MM/yyyy"), "2024-02-29");
    EXPECT_EQ(start("29.2.", "dd/MM/yyyy", "1903-06-01T00:00:00Z"),
              "none"); // 1900 had none, and before no years
    EXPECT_EQ(start("29.2.", "dd/MM/yyyy", "2103-06-01T00:00:00Z"), "2096-02-29");
}

TEST(EntrySentence, PutsNightsAcrossMidnight)
{
    EXPECT_EQ(summary("yesterday 22:00-2:00"), " | 03-06 22:00 - 03-07 02:00");
    EXPECT_EQ(summary("yesterday 10pm-2"), " | 03-06 22:00 - 03-07 02:00");
    EXPECT_EQ(summary("yesterday 18:00-10:00"), " | 03-06 18:00 - 03-07 10:00"); // 16 hours
    EXPECT_EQ(summary("yesterday 18:00-10:01"), "yesterday 18:00-10:01");
    EXPECT_EQ(summary("x 9h - 8h"), "x 9h - 8h");
    // Later today stands as typed.
    EXPECT_EQ(summary("x 18:00-19:00"), "x | 03-07 18:00 - 03-07 19:00");
    // Of nights, the nearest.
    EXPECT_EQ(summary("22:00-2:00", {.now = "2025-03-07T03:00:00Z"}), " | 03-06 22:00 - 03-07 02:00");
    EXPECT_EQ(summary("22:00-2:00", {.now = "2025-03-07T01:00:00Z"}), " | 03-06 22:00 - 03-07 02:00");
    EXPECT_EQ(summary("22:00-2:00", {.now = "2025-03-07T21:00:00Z"}), " | 03-07 22:00 - 03-08 02:00");
    EXPECT_EQ(summary("22:00-2:00", {.now = "2025-03-07T23:00:00Z"}), " | 03-07 22:00 - 03-08 02:00");
    EXPECT_EQ(summary("today 22:00-2:00", {.now = "2025-03-07T03:00:00Z"}), " | 03-07 22:00 - 03-08 02:00");
}

TEST(EntrySentence, ResolvesToWholeMilliseconds)
{
    const Instant now = utc(friday) + std::chrono::microseconds{700};
    const auto span =
        EntrySentence::resolve(EntrySentence::Duration{90.0001}, std::nullopt, now, UserTime::utc());
    ASSERT_TRUE(span);
    EXPECT_EQ(span->stop, utc(friday));
    EXPECT_EQ(span->start, utc(friday) - std::chrono::seconds{90});
    // What comes from code and lies outside the years that entries may have.
    const EntrySentence::DayRef last = EntrySentence::Date{{9999, 12, 31}};
    EXPECT_FALSE(EntrySentence::resolve(EntrySentence::Range{{22, 0}, {2, 0}}, last, now, UserTime::utc()));
    EXPECT_FALSE(EntrySentence::resolve(EntrySentence::Duration{1e-9}, std::nullopt, now, UserTime::utc()));
}

TEST(EntrySentence, FollowsTheClockWhenItChanges)
{
    // Forward from 2:00 to 3:00 on 30 March, back from 3:00 to 2:00 on 26 October.
    const Setting spring = {"2025-03-30T10:00:00Z", "Europe/Paris"};
    EXPECT_EQ(summary("1:30-3:30", spring), " | 03-30 01:30 - 03-30 03:30");
    const auto length = [](std::string_view line, const Setting &setting) {
        const auto reading = readIn(line, setting);
        const auto span = EntrySentence::resolve(*reading.time, reading.day, utc(setting.now),
                                                 UserTime::make(setting.zone).value());
        return secondsBetween(span->start, span->stop.value_or(utc(setting.now))) / 60;
    };
    EXPECT_EQ(length("1:30-3:30", spring), 60);
    EXPECT_EQ(length("since 1:00", spring), 10 * 60);
    EXPECT_EQ(length("3h ago", {"2025-03-30T01:30:00Z", "Europe/Paris"}), 180);
    EXPECT_EQ(summary("3h ago", {"2025-03-30T01:30:00Z", "Europe/Paris"}), " | 03-29 23:30 - ");
    EXPECT_EQ(length("22:00-3:00 2025-03-29", spring), 4 * 60);
    // A skipped time is as long after the gap as it would have been after its beginning; a stretch that this
    // turns round is none.
    EXPECT_EQ(summary("2:15-3:30", spring), " | 03-30 03:15 - 03-30 03:30");
    EXPECT_EQ(summary("2:30-3:00", spring), "2:30-3:00");

    const Setting autumn = {"2025-10-26T10:00:00Z", "Europe/Paris"};
    EXPECT_EQ(length("1:30-3:30", autumn), 180);
    EXPECT_EQ(length("2:15-2:45", autumn), 30);
    EXPECT_EQ(length("22:00-3:00 yesterday", autumn), 6 * 60);
    // At the second 2:15, the first 2:30 has been.
    EXPECT_EQ(length("since 2:30", {"2025-10-26T01:15:00Z", "Europe/Paris"}), 45);
    EXPECT_EQ(summary("since 2:30", {"2025-10-26T00:15:00Z", "Europe/Paris"}), " | 10-25 02:30 - ");

    // The other half of the world, and half an hour.
    EXPECT_EQ(length("1:30-3:30", {"2025-10-05T10:00:00Z", "Australia/Sydney"}), 60);
    EXPECT_EQ(length("1:30-3:30", {"2025-04-06T10:00:00Z", "Australia/Sydney"}), 180);
    EXPECT_EQ(length("1:30-3:30", {"2025-10-05T10:00:00Z", "Australia/Lord_Howe"}), 90);

    // A day without midnight.
    const Setting lost = {"2018-11-04T12:00:00Z", "America/Sao_Paulo"};
    EXPECT_EQ(summary("0:00-2:00", lost), " | 11-04 01:00 - 11-04 02:00");
    EXPECT_EQ(summary("22:00-0:30 yesterday", lost), " | 11-03 22:00 - 11-04 01:30");
    EXPECT_EQ(summary("since 0:30", lost), " | 11-04 01:30 - ");
    // A day that there was not at all.
    EXPECT_EQ(summary("x 9-10:00 yesterday", {"2011-12-31T00:00:00Z", "Pacific/Apia"}),
              "x 9-10:00 yesterday");
}

TEST(EntrySentence, FindsTheMentionAtTheCursor)
{
    using Mention = EntrySentence::Mention;
    const std::optional<Mention> cli = Mention{'@', "cli", 5, 9};
    for (const std::size_t cursor : {5U, 6U, 9U, 100U})
        EXPECT_EQ(EntrySentence::mentionAt(std::string_view("call @cli"), cursor), cli) << cursor;
    for (const std::size_t cursor : {0U, 4U})
        EXPECT_EQ(EntrySentence::mentionAt(std::string_view("call @cli"), cursor), std::nullopt) << cursor;
    EXPECT_EQ(EntrySentence::mentionAt(std::string_view("C# x"), 2), std::nullopt);
    EXPECT_EQ(EntrySentence::mentionAt(std::string_view("a  b"), 2), std::nullopt);
    EXPECT_EQ(EntrySentence::mentionAt(std::string_view("@"), 1), (Mention{'@', "", 0, 1}));
    EXPECT_EQ(EntrySentence::mentionAt(std::string_view("@a@b #c"), 2), (Mention{'@', "a@b", 0, 4}));
    EXPECT_EQ(EntrySentence::mentionAt(std::string_view("🚀\n#größe\u3000x"), 8),
              (Mention{'#', "größe", 3, 9}));
    // Halves of characters are no white space.
    EXPECT_EQ(EntrySentence::mentionAt(std::u16string_view(u"x #\xD83D\xDE80\xDC00 y"), 4),
              (Mention{'#', "🚀\uFFFD", 2, 6}));
}

/// Long lines take time in proportion to their length: each of these would take minutes if some step went
/// over the line for every word of it.
TEST(EntrySentence, TakesLinearTimeWhateverItIsGiven)
{
    ProjectResponse project;
    project.id = "p";
    project.name = "Project";
    const std::string sinceNine = " since 9:00";
    const SentenceCatalog catalog({project}, {}, {{"t", "w", "tag"}});
    for (const char *part : {"@x ", "@\u201Cx ", "@\"a\"/", "#\"a ", "9:00 - ", "$ ", "1h ", "@a/b/c/d ",
                             "\xF0\x9F\x9A", "since ", "a", "9", "\xE2\x80\xA8", "@p/", "\""}) {
        std::string line;
        while (line.size() < 100'000)
            line += part;
        for (const std::string &end : {std::string(), sinceNine, std::string(" @project")}) {
            const auto reading = EntrySentence::read(line + end, catalog, {}, utc(friday), UserTime::utc());
            EXPECT_EQ(reading.time.has_value(), part[0] == '1' || end == sinceNine) << part << end;
            EXPECT_LE(reading.description.size(), line.size() + 12) << part;
        }
        EXPECT_EQ(EntrySentence::mentionAt(line, SIZE_MAX).has_value(),
                  part[0] == '@' && line.find(' ') == line.npos)
            << part;
    }
}

} // namespace
} // namespace orvane
