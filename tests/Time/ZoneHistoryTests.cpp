// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/DateText.h"
#include "Time/ZoneHistory.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono;

std::string number(std::uint64_t value, int bytes)
{
    std::string text;
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        text += static_cast<char>(value >> shift & 0xff);
    return text;
}

/// A zone file, written as the format has it.
struct File {
    std::string footer;
    std::vector<int> offsets{0};
    std::vector<std::pair<std::int64_t, int>> table = {}; ///< instants and places in `offsets`
    char version = '2';
    std::uint32_t leaps = 0;

    std::string header(std::size_t changes, std::size_t types) const
    {
        std::string text = std::string("TZif") + version + std::string(15, '\0');
        for (const std::uint64_t count : {std::uint64_t{0}, std::uint64_t{0}, std::uint64_t{leaps},
                                          std::uint64_t{changes}, std::uint64_t{types}, std::uint64_t{4}})
            text += number(count, 4);
        return text;
    }
    std::string bytes() const
    {
        const std::string oldBlock = header(0, 1) + std::string(6, '\0') + "OLD" + std::string(1, '\0') +
                                     std::string(leaps * std::size_t{8}, '\0');
        std::string text = oldBlock + header(table.size(), offsets.size());
        for (const auto &[at, type] : table)
            text += number(static_cast<std::uint64_t>(at), 8);
        for (const auto &[at, type] : table)
            text += static_cast<char>(type);
        for (const int offset : offsets)
            text += number(static_cast<std::uint64_t>(offset), 4) + std::string(2, '\0');
        return text + "ABC" + std::string(1 + leaps * std::size_t{12}, '\0') + "\n" + footer + "\n";
    }
};

std::int64_t at(std::string_view iso)
{
    return instantFromIso8601(iso).value().time_since_epoch() / seconds{1};
}

/// The changes of a year as "2040-03-25T01:00:00.000Z +7200".
std::vector<std::string> changes(std::string_view rule, int year)
{
    std::vector<std::string> texts;
    const auto yearly = YearlyChanges::parse(rule);
    EXPECT_TRUE(yearly) << rule;
    if (yearly) {
        for (const ZoneChange &change : yearly->inYear(year))
            texts.push_back(iso8601Text(change.at) + " " + std::to_string(change.offset.count()));
    }
    return texts;
}

using Texts = std::vector<std::string>;

TEST(YearlyChanges, ReadTheFormsOfARule)
{
    EXPECT_EQ(changes("CET-1CEST,M3.5.0,M10.5.0/3", 2040),
              (Texts{"2040-03-25T01:00:00.000Z 7200", "2040-10-28T01:00:00.000Z 3600"}));
    // The south, where the year begins in daylight-saving time, here half an hour of it.
    EXPECT_EQ(changes("<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", 2040),
              (Texts{"2040-03-31T15:00:00.000Z 37800", "2040-10-06T15:30:00.000Z 39600"}));
    // Winter time as the exception, a time before its day and one days after it.
    EXPECT_EQ(changes("IST-1GMT0,M10.5.0,M3.5.0/1", 2040),
              (Texts{"2040-03-25T01:00:00.000Z 3600", "2040-10-28T01:00:00.000Z 0"}));
    EXPECT_EQ(changes("<-02>2<-01>,M3.5.0/-1,M10.5.0/0", 2040),
              (Texts{"2040-03-25T01:00:00.000Z -3600", "2040-10-28T01:00:00.000Z -7200"}));
    EXPECT_EQ(changes("EET-2EEST,M3.4.4/50,M10.4.4/50", 2025),
              (Texts{"2025-03-29T00:00:00.000Z 10800", "2025-10-24T23:00:00.000Z 7200"}));
    // Days of the year, with and without the leap day.
    EXPECT_EQ(changes("ABC0DEF,J60/0,59/0", 2024),
              (Texts{"2024-02-28T23:00:00.000Z 0", "2024-03-01T00:00:00.000Z 3600"}));
    EXPECT_EQ(changes("ABC0DEF,J1/0,365/0", 2023),
              (Texts{"2023-01-01T00:00:00.000Z 3600", "2023-12-31T23:00:00.000Z 0"}));
    EXPECT_EQ(changes("<-03>3", 2040), Texts{});
}

TEST(YearlyChanges, RefuseOtherTexts)
{
    for (const char *text :
         {"", "CET", "CE-1", "<CE>-1", "<CET-1", "CET-25", "CET-1:60", "CET-1CEST", "CET-1CEST,M3.5.0",
          "CET-1CEST,M3.5.0,M10.5.0,", "CET-1CEST,M13.1.0,M10.5.0", "CET-1CEST,M3.6.0,M10.5.0",
          "CET-1CEST,M3.5.7,M10.5.0", "CET-1CEST,J0,J5", "CET-1CEST,366,5", "CET-1CEST,M3.5.0/168,M10.5.0",
          "CET-1CEST,M3.5.0/,M10.5.0", "CET-1 ", "CET-9999999999999999999"})
        EXPECT_FALSE(YearlyChanges::parse(text)) << text;
}

TEST(ZoneHistory, GoesOnByTheRuleWhereTheTableEnds)
{
    // As systems write their files today: the table ends with the first year that follows the rule.
    const auto history =
        ZoneHistory::parse(File{.footer = "CET-1CEST,M3.5.0,M10.5.0/3",
                                .offsets = {0, 3600, 7200},
                                .table = {{at("1950-01-01T00:00:00Z"), 1}, {at("1996-03-31T01:00:00Z"), 2}}}
                               .bytes());
    ASSERT_TRUE(history);
    const auto span = [&](std::string_view iso) { return history->spanAt(Instant{seconds{at(iso)}}); };
    EXPECT_EQ(span("1949-12-31T23:59:59Z").offset, seconds{0});
    EXPECT_EQ(span("1996-03-31T00:59:59Z").from, Instant{seconds{at("1950-01-01T00:00:00Z")}});
    // From the table's last change to the rule's first: the changes that the rule alone would have made in
    // 1995 are none.
    const ZoneSpan summer = span("1996-03-31T01:00:00Z");
    EXPECT_EQ(summer.offset, seconds{7200});
    EXPECT_EQ(summer.from, Instant{seconds{at("1996-03-31T01:00:00Z")}});
    EXPECT_EQ(summer.to, Instant{seconds{at("1996-10-27T01:00:00Z")}});
    EXPECT_EQ(span("9999-12-31T23:00:00Z").offset, seconds{3600});
    EXPECT_EQ(span("9999-07-01T00:00:00Z").offset, seconds{7200});
    // The whole range of an instant has a stretch.
    EXPECT_EQ(history->spanAt(Instant::min()).offset, seconds{0});
    EXPECT_EQ(history->spanAt(Instant::max()).to, Instant::max());
}

TEST(ZoneHistory, ARuleThatContradictsTheTablesEndBeginsAfterIt)
{
    const auto history = ZoneHistory::parse(File{
        .footer = "ABC0DEF,M3.5.0,M10.5.0", .offsets = {0, 18000}, .table = {{at("2024-12-01T00:00:00Z"), 1}}}
                                                .bytes());
    ASSERT_TRUE(history);
    const ZoneSpan winter = history->spanAt(Instant{seconds{at("2025-01-01T00:00:00Z")}});
    EXPECT_EQ(winter.from, Instant{seconds{at("2024-12-01T00:00:00Z")}});
    EXPECT_EQ(winter.to, Instant{seconds{at("2025-03-30T02:00:00Z")}});
    EXPECT_EQ(winter.offset, seconds{18000});
}

TEST(ZoneHistory, ATableMayBeginAtTheBigBang)
{
    const auto history = ZoneHistory::parse(
        File{.footer = "<+01>-1", .offsets = {5, 3600}, .table = {{-(std::int64_t{1} << 59), 1}}}.bytes());
    ASSERT_TRUE(history);
    EXPECT_EQ(history->spanAt(Instant{}).offset, seconds{3600});
}

TEST(ZoneHistory, RefusesWhatIsNoSoundFile)
{
    const File sound{.footer = "ABC0", .offsets = {0, 3600}, .table = {{100, 1}, {200, 0}}};
    const std::string bytes = sound.bytes();
    ASSERT_TRUE(ZoneHistory::parse(bytes));
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_FALSE(ZoneHistory::parse(std::string_view(bytes).substr(0, size))) << size;

    EXPECT_FALSE(ZoneHistory::parse(File{.footer = "no rule"}.bytes()));
    EXPECT_FALSE(ZoneHistory::parse(File{.footer = "ABC0", .table = {{100, 1}}}.bytes())) << "no such offset";
    EXPECT_FALSE(ZoneHistory::parse(File{.footer = "ABC0", .table = {{100, 0}, {100, 0}}}.bytes()));
    EXPECT_FALSE(ZoneHistory::parse(File{.footer = "ABC0", .offsets = {26 * 3600}}.bytes()));
    EXPECT_FALSE(ZoneHistory::parse(File{.footer = "ABC0", .offsets = {}}.bytes()));
    EXPECT_FALSE(ZoneHistory::parse(File{.footer = "ABC0", .version = '\0'}.bytes()));
    EXPECT_FALSE(ZoneHistory::parse(File{.footer = "ABC0", .leaps = 1}.bytes())) << "counts leap seconds";
}

} // namespace
} // namespace orvane
