// SPDX-License-Identifier: GPL-3.0-or-later
#include "Report/EntryReport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;
using std::chrono::seconds;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Instant morning = instantFromMilliseconds(1'772'000'000'000);

ProjectResponse project(const char *id, const char *client, std::optional<double> rate)
{
    ProjectResponse made;
    made.id = id;
    made.name = std::string("Project ") + id;
    made.color = "#3366cc";
    if (client)
        made.clientId = client;
    made.hourlyRate = rate;
    return made;
}

TimeEntryResponse entry(const char *projectId, milliseconds length, bool isBillable = true)
{
    TimeEntryResponse made;
    if (projectId)
        made.projectId = projectId;
    made.isBillable = isBillable;
    made.start = morning;
    made.stop = morning + length;
    return made;
}

TimeEntryResponse tagged(TimeEntryResponse made, std::vector<std::string> tags)
{
    made.tagIds = std::move(tags);
    return made;
}

/// Divided between a (60%, billable) and c (40%, not billable).
TimeEntryResponse divided(milliseconds length)
{
    TimeEntryResponse made = entry("none of this counts", length);
    made.shares = {{.projectId = "a", .taskId = {}, .isBillable = true, .percent = 60, .description = {}},
                   {.projectId = "c", .taskId = {}, .isBillable = false, .percent = 40, .description = {}}};
    return made;
}

/// a and b are Acme's, at 80 and 100.50 an hour; c is nobody's and without a rate of its own.
class EntryReportTest : public ::testing::Test {
protected:
    EntryReportTest()
    {
        ClientResponse acme;
        acme.id = "acme";
        acme.name = "Acme";
        TagResponse deep;
        deep.id = "deep";
        deep.name = "Deep work";
        catalog.replace({project("a", "acme", 80), project("b", "acme", 100.5), project("c", nullptr, {})},
                        {acme}, {deep});
        settings.currency = "EUR";
    }

    EntryReport report(const std::vector<TimeEntryResponse> &entries, EntryGrouping grouping,
                       const EntryFilter &filter = {}) const
    {
        return EntryReport::of(entries, grouping, filter, catalog, settings);
    }
    /// "name seconds/billable amount" of each line, the total last.
    static std::vector<std::string> lines(const EntryReport &report)
    {
        std::vector<std::string> texts;
        std::vector<EntryReport::Line> all = report.groups;
        all.push_back(report.total);
        for (const EntryReport::Line &line : all) {
            texts.push_back(line.name.value_or("-") + " " + std::to_string(line.seconds) + "/" +
                            std::to_string(line.billableSeconds) + " " +
                            (line.amount ? std::to_string(*line.amount) : "none"));
        }
        return texts;
    }

    Catalog catalog;
    WorkspaceSettingsResponse settings;
};

TEST_F(EntryReportTest, CountsEachShareWhereItGoes)
{
    TimeEntryResponse running = entry("a", hours{1});
    running.stop.reset();
    const std::vector<TimeEntryResponse> entries{divided(hours{10}), entry("b", minutes{30}),
                                                 entry("b", minutes{30}, false), running};
    EXPECT_THAT(lines(report(entries, EntryGrouping::project)),
                ElementsAre("Project a 21600/21600 48000", "Project c 14400/0 0", "Project b 3600/1800 5025",
                            "- 39600/23400 53025"));
    EXPECT_THAT(lines(report(entries, EntryGrouping::client)),
                ElementsAre("Acme 25200/23400 53025", "- 14400/0 0", "- 39600/23400 53025"))
        << "a client's projects at their own rates";
    EXPECT_EQ(report(entries, EntryGrouping::project).groups.front().color, "#3366cc");
    EXPECT_EQ(report(entries, EntryGrouping::project).currency, "EUR");
    EXPECT_THAT(lines(report({running}, EntryGrouping::project)), ElementsAre("- 0/0 0"));
}

TEST_F(EntryReportTest, CountsTagsUnderEachAndOnceInTheTotal)
{
    const std::vector<TimeEntryResponse> entries{tagged(entry("a", hours{1}), {"deep", "gone"}),
                                                 tagged(entry("a", hours{2}), {"deep"}),
                                                 entry("a", hours{9}, false)};
    const EntryReport made = report(entries, EntryGrouping::tag);
    EXPECT_THAT(lines(made), ElementsAre("Deep work 10800/10800 24000", "- 3600/3600 8000", "- 32400/0 0",
                                         "- 43200/10800 24000"))
        << "what has no tag comes last, however long";
    EXPECT_EQ(made.groups[1].id, "gone");
    EXPECT_EQ(made.groups[2].id, std::nullopt);
}

TEST_F(EntryReportTest, RoundsEachGroupOnceAndHalfUp)
{
    // Twice 1.125 s at 80 an hour; 9 s at 100.50 are 25.125 hundredths.
    EXPECT_THAT(
        lines(report({entry("a", milliseconds{1125}), entry("a", milliseconds{1125}), entry("b", seconds{9})},
                     EntryGrouping::project)),
        ElementsAre("Project b 9/9 25", "Project a 2/2 4", "- 11/11 29"))
        << "of the seconds that are shown";
    settings.defaultHourlyRate = 18;
    const std::vector<TimeEntryResponse> halves{entry("c", seconds{1}), entry(nullptr, seconds{1})};
    EXPECT_THAT(lines(report(halves, EntryGrouping::project)),
                ElementsAre("Project c 1/1 1", "- 1/1 1", "- 2/2 2"))
        << "half a hundredth each, and the lines of a bill add up";
    EXPECT_THAT(lines(report(halves, EntryGrouping::tag)), ElementsAre("- 2/2 1", "- 2/2 1"));
    settings.defaultHourlyRate = 1'000'000;
    EXPECT_EQ(report({entry("c", hours{24 * 365 * 100})}, EntryGrouping::project).total.amount,
              std::int64_t{24} * 365 * 100 * 100'000'000);
}

TEST_F(EntryReportTest, SaysWhereARateLacks)
{
    const EntryReport none = report({entry("c", hours{1})}, EntryGrouping::project);
    EXPECT_EQ(none.total.amount, std::nullopt);
    EXPECT_TRUE(none.lacksRates);
    const EntryReport some = report({entry("c", hours{1}), entry("a", hours{1})}, EntryGrouping::project);
    EXPECT_EQ(some.total.amount, 8000);
    EXPECT_TRUE(some.lacksRates);
    EXPECT_FALSE(report({entry("c", hours{1}, false)}, EntryGrouping::project).lacksRates);
}

TEST_F(EntryReportTest, LooksAtWhatTheFilterTakes)
{
    const std::vector<TimeEntryResponse> entries{tagged(divided(seconds{10}), {"deep"}),
                                                 entry("b", seconds{7}), entry(nullptr, milliseconds{1500})};
    const auto counted = [&](const EntryFilter &filter) {
        EXPECT_EQ(report(entries, EntryGrouping::task, filter).total.seconds,
                  filter.seconds(entries, catalog, morning))
            << "a list and a report add up to the same";
        return std::pair(filter.entriesOf(entries, catalog).size(),
                         filter.seconds(entries, catalog, morning));
    };
    EXPECT_EQ(counted({}), std::pair(std::size_t{3}, std::int64_t{18}));
    EXPECT_EQ(counted({.clientId = "acme"}), std::pair(std::size_t{2}, std::int64_t{13}));
    EXPECT_EQ(counted({.projectId = "c"}), std::pair(std::size_t{1}, std::int64_t{4}));
    EXPECT_EQ(counted({.clientId = "acme", .tagId = "deep"}), std::pair(std::size_t{1}, std::int64_t{6}));
    EXPECT_EQ(counted({.clientId = "acme", .projectId = "c"}), std::pair(std::size_t{0}, std::int64_t{0}));
    EXPECT_EQ(counted({.projectId = ""}), std::pair(std::size_t{1}, std::int64_t{1}));
    EXPECT_EQ(counted({.clientId = ""}), std::pair(std::size_t{2}, std::int64_t{5}));
    EXPECT_EQ(counted({.tagId = ""}), std::pair(std::size_t{2}, std::int64_t{8}));
}

} // namespace
} // namespace orvane
