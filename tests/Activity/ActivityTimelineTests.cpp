// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/ActivityTimeline.h"

#include <algorithm>
#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace orvane {
namespace {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

using Seconds = std::vector<std::int64_t>;
using Texts = std::vector<std::string>;

const DayKey tuesday{2026, 3, 3};
const Instant midnight = UserTime::utc().startOfDay(tuesday);

SharedRepository repository(const std::string &name)
{
    return std::make_shared<ActivityRepository>(
        ActivityRepository{"/work/" + name, name, {}, true, "example.com/" + name});
}

/// Sessions with events at seconds after midnight.
class Logs {
public:
    AgentSession &add(const std::string &id, const std::string &name, const Seconds &prompts,
                      const Seconds &touches = {}, const std::string &parent = {})
    {
        AgentSession session;
        session.id = id;
        session.parentID = parent;
        for (const std::int64_t at : prompts)
            session.events.push_back({midnight + seconds{at}, false});
        for (const std::int64_t at : touches)
            session.events.push_back({midnight + seconds{at}, true});
        std::ranges::sort(session.events);
        m_sessions.push_back(std::move(session));
        // Each session has a repository value of its own: only the key says that two are the same.
        placed.push_back({&m_sessions.back(), repository(name)});
        return m_sessions.back();
    }
    ActivityDay day(const std::set<std::string> &ignoring = {}, int offset = 0) const
    {
        const DayKey key = tuesday.adding(offset);
        return ActivityTimeline::day(key, UserTime::utc().dayInterval(key), placed, ignoring);
    }

    std::vector<PlacedSession> placed;

private:
    std::deque<AgentSession> m_sessions;
};

std::string text(InstantInterval range)
{
    return std::to_string(static_cast<std::int64_t>(secondsBetween(midnight, range.from))) + "-" +
           std::to_string(static_cast<std::int64_t>(secondsBetween(midnight, range.to)));
}

std::string joined(const Texts &texts)
{
    std::string out;
    for (const std::string &one : texts)
        out += (out.empty() ? "" : "+") + one;
    return out;
}

/// "website 0-300 s1+s2"
Texts attention(const ActivityDay &day)
{
    Texts out;
    for (const AttentionSegment &segment : day.attention)
        out.push_back(segment.repository->name + " " + text(segment.range) + " " +
                      joined(segment.sessionIDs));
    return out;
}

/// "s1 website 0-300"
Texts runs(const ActivityDay &day)
{
    Texts out;
    for (const AgentRun &run : day.runs)
        out.push_back(run.sessionID + " " + run.repository->name + " " + text(run.range));
    return out;
}

/// "0-900 switches 1: website 300 s1, api 600 s2"
Texts blocks(const ActivityDay &day)
{
    Texts out;
    for (const FocusBlock &block : day.blocks) {
        std::string line = text(block.range) + " switches " + std::to_string(block.switches) + ":";
        for (const FocusShare &share : block.shares)
            line += (line.ends_with(':') ? " " : ", ") + share.repository->name + " " +
                    std::to_string(static_cast<std::int64_t>(share.duration)) + " " +
                    joined(share.sessionIDs);
        out.push_back(std::move(line));
    }
    return out;
}

Texts ranges(const std::vector<InstantInterval> &list)
{
    Texts out;
    for (const InstantInterval range : list)
        out.push_back(text(range));
    return out;
}

TEST(ActivityTimeline, GivesAttentionToThePromptUntilTheNextOne)
{
    Logs logs;
    logs.add("s1", "website", {0, 300, 3000}).branches = {"main", "fix"};
    logs.add("s2", "api", {3500});
    const ActivityDay day = logs.day();
    EXPECT_THAT(attention(day), ElementsAre("website 0-300 s1", "website 300-1200 s1", "website 3000-3500 s1",
                                            "api 3500-4400 s2"));
    EXPECT_THAT(day.attention[1].prompts, ElementsAre(midnight + seconds{300}));
    EXPECT_THAT(day.attention[1].branches, ElementsAre("main", "fix"));
    EXPECT_THAT(day.totals.attention, ElementsAre(Pair("/work/api", 900), Pair("/work/website", 1700)));
    EXPECT_THAT(day.totals.agent, IsEmpty()) << "what has no length has no key";
    EXPECT_EQ(day.sessions.size(), 2U);
}

TEST(ActivityTimeline, LetsRunsGrowOverShortPauses)
{
    Logs logs;
    logs.add("s1", "website", {}, {0, 120, 300, 600, 10'000, 10'180, 10'361});
    const ActivityDay day = logs.day();
    EXPECT_THAT(runs(day), ElementsAre("s1 website 0-300", "s1 website 600-600", "s1 website 10000-10180",
                                       "s1 website 10361-10361"));
    EXPECT_THAT(day.totals.agent, ElementsAre(Pair("/work/website", 480)));
    EXPECT_THAT(day.attention, IsEmpty());
}

TEST(ActivityTimeline, CutsWhatReachesOverMidnight)
{
    constexpr std::int64_t end = 86'400;
    Logs logs;
    logs.add("s1", "website", {end - 300}, {end - 60, end + 60, end + 200});
    logs.add("s2", "api", {-1000, -100}, {-90, 0});
    logs.add("s3", "docs", {end + 100}, {end + 180});
    logs.add("s4", "docs", {}, {-1, end});
    const ActivityDay day = logs.day();
    EXPECT_THAT(attention(day), ElementsAre("api 0-800 s2", "website 86100-86400 s1"));
    EXPECT_THAT(day.attention[0].prompts, ElementsAre(midnight - seconds{100}));
    EXPECT_THAT(runs(day), ElementsAre("s2 api 0-0", "s1 website 86340-86400"));
    EXPECT_THAT(day.totals.attention, ElementsAre(Pair("/work/api", 800), Pair("/work/website", 300)));
    ASSERT_EQ(day.sessions.size(), 2U) << "a session with nothing in the day is not listed";
    EXPECT_EQ(day.sessions[0].id, "s2");
    EXPECT_EQ(day.sessions[0].events.size(), 4U) << "sessions are listed whole";

    const ActivityDay next = logs.day({}, 1);
    EXPECT_THAT(attention(next), ElementsAre("website 86400-86500 s1", "docs 86500-87400 s3"));
    EXPECT_THAT(runs(next),
                ElementsAre("s1 website 86400-86600", "s4 docs 86400-86400", "s3 docs 86580-86580"));
}

TEST(ActivityTimeline, LosesNoPromptOfOneInstant)
{
    Logs logs;
    logs.add("s2", "website", {100}).branches = {"fix", "main"};
    logs.add("s1", "website", {100}).branches = {"main"};
    logs.add("s3", "api", {100});
    logs.add("s4", "secret", {100});
    const ActivityDay day = logs.day({"example.com/secret"});
    EXPECT_THAT(attention(day), ElementsAre("api 100-100 s3", "website 100-1000 s1+s2"));
    EXPECT_EQ(day.attention[1].prompts.size(), 2U);
    EXPECT_THAT(day.attention[1].branches, ElementsAre("main", "fix"));
    EXPECT_THAT(day.totals.attention, ElementsAre(Pair("/work/website", 900)));
    EXPECT_THAT(blocks(day), ElementsAre("100-1000 switches 0: website 900 s1+s2"));
}

TEST(ActivityTimeline, KeepsIgnoredRepositoriesOutOfSight)
{
    Logs logs;
    logs.add("s1", "website", {0, 1000}, {10, 20});
    logs.add("s2", "secret", {100, 1100}, {110, 120});
    logs.add("s3", "secret", {}, {500});
    logs.add("s4", "secret", {-5000}, {-4000});
    logs.add("s5", "private", {2500});
    const ActivityDay day = logs.day({"example.com/secret", "example.com/private"});
    EXPECT_THAT(attention(day), ElementsAre("website 0-100 s1", "website 1000-1100 s1"));
    EXPECT_THAT(runs(day), ElementsAre("s1 website 10-20"));
    EXPECT_EQ(day.sessions.size(), 1U);
    EXPECT_EQ(day.totals.attention.size() + day.totals.agent.size(), 2U);
    ASSERT_EQ(day.ignored.size(), 2U);
    EXPECT_EQ(day.ignored[0].name, "private");
    EXPECT_EQ(day.ignored[1].key, "/work/secret");
    EXPECT_EQ(day.ignored[1].sessions, 2) << "those with something in the day";
}

TEST(ActivityTimeline, JoinsAttentionToFocusBlocks)
{
    Logs logs;
    logs.add("s1", "website", {0, 600, 5400});
    logs.add("s2", "api", {300});
    logs.add("s3", "website", {900});
    // The attention of the prompt before ends at 1800, at 3600 and at 6300.
    logs.add("s4", "docs", {2700});
    logs.add("s5", "docs", {4501});
    EXPECT_THAT(blocks(logs.day()),
                ElementsAre("0-3600 switches 3: website 1500 s1+s3, api 300 s2, docs 900 s4",
                            "4501-6300 switches 1: docs 899 s5, website 900 s1"));
}

TEST(ActivityTimeline, FindsWhereAgentsWorkedSideBySide)
{
    Logs logs;
    logs.add("lead", "website", {}, {0, 100, 200, 300});
    logs.add("helper", "website", {}, {50, 150}, "lead");
    logs.add("helper's helper", "website", {}, {60, 160}, "helper");
    EXPECT_THAT(logs.day().parallel, IsEmpty()) << "a session and all that work for it are one";

    logs.add("other", "api", {}, {100, 200});
    logs.add("moment", "api", {}, {20});
    logs.add("third", "docs", {}, {200, 260, 400});
    EXPECT_THAT(ranges(logs.day().parallel), ElementsAre("100-300")) << "what touches is one stretch";

    Logs strange;
    strange.add("a", "website", {}, {0, 100}, "b");
    strange.add("b", "website", {}, {0, 100}, "a");
    strange.add("c", "website", {}, {0, 100}, "c");
    strange.add("d", "website", {}, {500, 600}, "lost");
    strange.add("e", "website", {}, {500, 600}, "lost");
    EXPECT_THAT(ranges(strange.day().parallel), ElementsAre("0-100"))
        << "a circle is one family, and so are the helpers of a session whose log is gone";
}

/// A week of random work whose last day, that of the change to summer time, has 23 hours.
class RandomWeek : public testing::TestWithParam<unsigned> {
protected:
    RandomWeek() : m_random(GetParam())
    {
        const int count = number(1, 12);
        for (int i = 0; i < count; ++i)
            addSession(i);
    }

    int number(int least, int most) { return std::uniform_int_distribution(least, most)(m_random); }

    void addSession(int i)
    {
        Seconds prompts;
        Seconds touches;
        // From the evening before to the morning after, in bursts, often close to the rules' limits.
        std::int64_t at = number(-7200, 7 * 86'400);
        for (int step = number(1, 60); step > 0; --step) {
            (number(0, 3) == 0 ? prompts : touches).push_back(at);
            at += number(0, 9) == 0 ? number(0, 40'000) : number(0, 4) * 60 + number(0, 1);
        }
        const std::string parent = i > 0 && number(0, 3) == 0 ? "s" + std::to_string(number(0, i)) : "";
        m_logs.add("s" + std::to_string(i), names[static_cast<std::size_t>(number(0, 3))],
                   parent.empty() ? prompts : Seconds(), touches, parent);
    }

    ActivityDay between(InstantInterval interval) const
    {
        return ActivityTimeline::day(m_monday, interval, m_logs.placed, {"example.com/secret"});
    }

    /// Whoever was prompted last has the attention, told without segments.
    std::string attentiveTo(Instant at) const
    {
        std::tuple<Instant, bool, std::string> last;
        for (const PlacedSession &placed : m_logs.placed) {
            for (const AgentEvent &event : placed.session->events) {
                if (!event.isTouch && event.date <= at && at < event.date + seconds{900})
                    last = std::max(
                        last, {event.date, placed.repository->name != "secret", placed.repository->name});
            }
        }
        return std::get<1>(last) ? std::get<2>(last) : std::string();
    }

    const std::array<std::string, 4> names{"website", "api", "docs", "secret"};
    const UserTime m_time = *UserTime::make("Europe/Paris");
    const DayKey m_monday{2026, 3, 23};
    Logs m_logs;
    std::mt19937 m_random;
};

std::map<std::string, double> attentionOf(const ActivityDay &day)
{
    std::map<std::string, double> sums;
    for (const AttentionSegment &segment : day.attention)
        sums[segment.repository->key] += secondsBetween(segment.range.from, segment.range.to);
    std::erase_if(sums, [](const auto &sum) { return sum.second == 0; });
    return sums;
}

std::map<std::string, double> sharesOf(const ActivityDay &day)
{
    std::map<std::string, double> sums;
    for (const FocusBlock &block : day.blocks) {
        for (const FocusShare &share : block.shares)
            sums[share.repository->key] += share.duration;
    }
    return sums;
}

std::map<std::string, double> workOf(const ActivityDay &day)
{
    std::map<std::string, double> sums;
    for (const AgentRun &run : day.runs)
        sums[run.repository->key] += secondsBetween(run.range.from, run.range.to);
    std::erase_if(sums, [](const auto &sum) { return sum.second == 0; });
    return sums;
}

void expectSound(const ActivityDay &day, InstantInterval interval)
{
    EXPECT_EQ(day.totals.attention, attentionOf(day));
    EXPECT_EQ(day.totals.attention, sharesOf(day));
    EXPECT_EQ(day.totals.agent, workOf(day));
    Instant end = interval.from;
    for (const AttentionSegment &segment : day.attention) {
        EXPECT_LE(end, segment.range.from) << "attention is nowhere twice";
        EXPECT_LE(segment.range.from, segment.range.to);
        end = segment.range.to;
    }
    EXPECT_LE(end, interval.to);
    std::map<std::string, Instant> busyUntil;
    for (const AgentRun &run : day.runs) {
        EXPECT_TRUE(interval.contains(run.range.from));
        EXPECT_LE(run.range.to, interval.to);
        const auto [until, isFirst] = busyUntil.try_emplace(run.sessionID, run.range.to);
        if (!isFirst) {
            EXPECT_GT(run.range.from, std::exchange(until->second, run.range.to)) << "runs stay apart";
        }
    }
    for (std::size_t i = 1; i < day.blocks.size(); ++i)
        EXPECT_GT(day.blocks[i].range.from - day.blocks[i - 1].range.to, seconds{900});
}

TEST_P(RandomWeek, IsCutIntoDaysWithoutALoss)
{
    // The logs count from another midnight; the week is moved there.
    const auto shift = midnight - m_time.startOfDay(m_monday);
    const auto moved = [&](InstantInterval range) {
        return InstantInterval{range.from + shift, range.to + shift};
    };
    const ActivityDay week = between(moved(m_time.weekInterval(m_monday)));
    expectSound(week, moved(m_time.weekInterval(m_monday)));
    ActivityTotals sums;
    for (int i = 0; i < 7; ++i) {
        const InstantInterval interval = moved(m_time.dayInterval(m_monday.adding(i)));
        const ActivityDay day = between(interval);
        expectSound(day, interval);
        for (const auto &[key, length] : day.totals.attention)
            sums.attention[key] += length;
        for (const auto &[key, length] : day.totals.agent)
            sums.agent[key] += length;
    }
    EXPECT_EQ(sums.attention, week.totals.attention);
    EXPECT_EQ(sums.agent, week.totals.agent);
}

TEST_P(RandomWeek, GivesAttentionToTheLastPromptAtAnyMoment)
{
    const InstantInterval interval{midnight, midnight + std::chrono::days{7}};
    const ActivityDay week = between(interval);
    for (int i = 0; i < 2000; ++i) {
        const Instant at = midnight + seconds{number(0, 7 * 86'400 - 1)};
        const auto found = std::ranges::find_if(
            week.attention, [at](const AttentionSegment &segment) { return segment.range.contains(at); });
        EXPECT_EQ(found == week.attention.end() ? "" : found->repository->name, attentiveTo(at))
            << secondsBetween(midnight, at);
    }
}

TEST_P(RandomWeek, DoesNotDependOnTheOrderOfSessions)
{
    const InstantInterval interval{midnight, midnight + std::chrono::days{7}};
    const ActivityDay week = between(interval);
    std::ranges::shuffle(m_logs.placed, m_random);
    const ActivityDay again = between(interval);
    EXPECT_EQ(attention(again), attention(week));
    EXPECT_EQ(runs(again), runs(week));
    EXPECT_EQ(blocks(again), blocks(week));
    EXPECT_EQ(again.sessions, week.sessions);
    EXPECT_EQ(again.parallel, week.parallel);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomWeek, testing::Range(0U, 60U));

} // namespace
} // namespace orvane
