// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/RepositoryRows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using std::chrono::minutes;
using ::testing::ElementsAre;
using ::testing::SizeIs;

const Instant start = instantFromMilliseconds(1'700'000'000'000);

/// Each time another object for the same repository, as two days of a week have them.
SharedRepository repository(const std::string &key)
{
    ActivityRepository repository;
    repository.key = key;
    repository.name = key.substr(key.rfind('/') + 1);
    return std::make_shared<ActivityRepository>(repository);
}

void attend(ActivityDay &day, const std::string &key, int length)
{
    AttentionSegment &segment = day.attention.emplace_back();
    segment.repository = repository(key);
    segment.range = {start, start + minutes{length}};
}

void work(ActivityDay &day, const std::string &key, int length)
{
    AgentRun &run = day.runs.emplace_back();
    run.repository = repository(key);
    run.range = {start, start + minutes{length}};
}

std::vector<std::string> names(const std::vector<RepositoryRow> &rows)
{
    std::vector<std::string> names;
    for (const RepositoryRow &row : rows)
        names.push_back(row.name);
    return names;
}

TEST(RepositoryRows, AreInTheOrderOfAttentionThenWorkThenKey)
{
    ActivityDay day;
    work(day, "/w/busy", 90);
    work(day, "/w/b-idle", 5);
    work(day, "/w/a-idle", 5);
    attend(day, "/w/short", 10);
    attend(day, "/w/long", 30);
    const auto rows = RepositoryRow::of({&day, 1});
    EXPECT_THAT(names(rows), ElementsAre("long", "short", "busy", "a-idle", "b-idle"));
    for (std::size_t i = 0; i < rows.size(); ++i)
        EXPECT_EQ(rows[i].place, i);
}

TEST(RepositoryRows, AddUpWhatDaysHave)
{
    std::vector<ActivityDay> days(2);
    attend(days[0], "/w/api", 10);
    attend(days[1], "/w/api", 20);
    work(days[1], "/w/api", 5);
    const auto rows = RepositoryRow::of(days);
    ASSERT_THAT(rows, SizeIs(1));
    EXPECT_EQ(rows[0].attended, 1800);
    EXPECT_EQ(rows[0].worked, 300);
    EXPECT_THAT(rows[0].attention, SizeIs(2));
    EXPECT_THAT(rows[0].runs, SizeIs(1));
}

TEST(RepositoryRows, HaveTheFolderInTheNameWhereTwoHaveTheSame)
{
    ActivityDay day;
    attend(day, "/home/me/clients/website", 40);
    attend(day, "/website", 30);
    attend(day, "/home/me/own/website", 20);
    attend(day, "/home/me/api", 10);
    const auto rows = RepositoryRow::of({&day, 1});
    EXPECT_THAT(names(rows), ElementsAre("clients/website", "website", "own/website", "api"));
    EXPECT_EQ(RepositoryNames(rows).of(*repository("/home/me/own/website")), "own/website");
}

} // namespace
} // namespace orvane
