// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/ActivityPicture.h"

#include "Activity/ActivityTimeline.h"
#include "Output/ActivityShapes.h"
#include "Terminal/BlockBar.h"
#include "Terminal/TextWidth.h"

#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using std::chrono::minutes;
using std::chrono::seconds;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

const DayKey tuesday{2020, 3, 3};
const UserTime utc = UserTime::utc();

/// Two repositories, a session each with work after its prompts, one with a helper.
class ActivityPictureTest : public testing::Test {
protected:
    void add(const std::string &id, const SharedRepository &repository, const std::string &title,
             const std::vector<int> &prompts, const std::vector<int> &touches, const std::string &parent = {})
    {
        AgentSession &session = m_sessions.emplace_back();
        session.id = id;
        session.parentID = parent;
        session.title = title;
        session.branches = {"main"};
        for (const int minute : prompts)
            session.events.push_back({utc.startOfDay(tuesday) + minutes{minute}, false});
        for (const int minute : touches)
            session.events.push_back({utc.startOfDay(tuesday) + minutes{minute}, true});
        std::ranges::sort(session.events);
        m_placed.push_back({&session, repository});
    }
    void addUsualDay()
    {
        add("claude:1", m_website, "Write the README", {540, 550, 600}, {541, 542, 543, 610, 612, 614});
        add("claude:1/a", m_website, "", {}, {543, 545, 547}, "claude:1");
        add("codex:2", m_api, "Fix the sign-in", {570}, {571, 573, 575, 611, 613});
    }
    ActivityDay day(DayKey key = tuesday) const
    {
        return ActivityTimeline::day(key, utc.dayInterval(key), m_placed, {"secret"});
    }
    std::string drawn(int width) const { return ActivityPicture(utc, {.width = width}).day(day()); }

    const SharedRepository m_website =
        std::make_shared<ActivityRepository>(ActivityRepository{"/w/website", "website", "", true, "w"});
    const SharedRepository m_api =
        std::make_shared<ActivityRepository>(ActivityRepository{"/w/api", "api", "", false, "a"});
    std::deque<AgentSession> m_sessions;
    std::vector<PlacedSession> m_placed;
};

void expectFits(const std::string &text, int width)
{
    std::size_t from = 0;
    for (std::size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', from)) {
        EXPECT_LE(displayWidth(text.substr(from, end - from)), width) << text;
        from = end + 1;
    }
    EXPECT_EQ(from, text.size()) << "the last line is ended";
}

TEST_F(ActivityPictureTest, DrawsADay)
{
    addUsualDay();
    EXPECT_EQ(drawn(100), "Tue, 3 Mar 2020\n"
                          "           09         10         11         12         13         14           █ "
                          "attention  ░ agents\n"
                          "  website  ████▋      ██▊                                                         "
                          " 0:40:00   0:10:00\n"
                          "  api           ▐██▎    ░                                                         "
                          " 0:15:00   0:06:00\n"
                          "  Total                                                                           "
                          " 0:55:00   0:16:00\n"
                          "\n"
                          "Focus\n"
                          "  09:00 – 10:15  1:15:00  website 0:40:00, api 0:15:00  2 switches\n"
                          "\n"
                          "Sessions\n"
                          "  09:00 – 10:14  claude  website  Write the README  3 prompts, 1 sub-agent\n"
                          "  09:30 – 10:13  claude  api      Fix the sign-in   1 prompt\n"
                          "\n"
                          "Agents worked side by side for 0:02:00.\n");
    EXPECT_THAT(drawn(60), StartsWith("Tue, 3 Mar 2020\n"
                                      "           09  10  11  12  13  14    █ attention  ░ agents\n"
                                      "  website  █▋  █                         0:40:00   0:10:00\n"
                                      "  api        █ ░                         0:15:00   0:06:00\n"));
    for (int width = 40; width < 160; ++width)
        expectFits(drawn(width), width);
}

TEST_F(ActivityPictureTest, ShowsTheHoursThereAre)
{
    // The day on which summer time ends in Paris has 25 hours, which begin at 22:00 the day before in UTC.
    const DayKey october{2020, 10, 25};
    const UserTime paris = *UserTime::make("Europe/Paris", 1, true);
    const auto between = [&](Instant from, Instant to) {
        ActivityDay day;
        day.day = october;
        day.runs = {{"claude:1", AgentSource::claude, m_api, {from, to}}};
        return ActivityPicture(paris, {.width = 120}).day(day);
    };
    const InstantInterval whole = paris.dayInterval(october);
    EXPECT_THAT(between(whole.from + minutes{1}, whole.to - minutes{1}),
                HasSubstr("12am  2am   3am   5am   7am   9am   11am  1pm   3pm   5pm   7pm   9pm  "));
    EXPECT_THAT(between(whole.to - minutes{1}, whole.to), HasSubstr(" 6pm           7pm           8pm  "));
    EXPECT_THAT(between(whole.from, whole.from), HasSubstr("  api  ░  "))
        << "a single moment of work is seen";
}

TEST_F(ActivityPictureTest, DrawsAWeek)
{
    addUsualDay();
    std::vector<ActivityDay> days;
    for (const DayKey key : utc.weekContaining(tuesday))
        days.push_back(day(key));
    const auto drawn = [&](int width) { return ActivityPicture(utc, {.width = width}).week(days); };
    EXPECT_THAT(
        drawn(100),
        StartsWith(
            "                   website                   api                       █ attention  ░ agents\n"
            "  Mon, 2 Mar 2020                                                                –         –\n"
            "  Tue, 3 Mar 2020  ████████████████████████  █████████                     0:55:00   "
            "0:16:00\n"));
    EXPECT_THAT(
        drawn(100),
        EndsWith(
            "  Total            0:40:00                   0:15:00                       0:55:00   0:16:00\n"
            "\n"
            "Agents worked side by side for 0:02:00.\n"));

    for (const char *name : {"docs", "tools", "site"}) {
        ActivityRepository other{std::string("/w/") + name, name, "", false, name};
        add(name, std::make_shared<ActivityRepository>(other), "", {}, {700, 702});
    }
    days[1] = day();
    EXPECT_THAT(drawn(60), StartsWith("                   website   4 others  █ attention  ░ agents\n"));
    EXPECT_THAT(drawn(60), HasSubstr("0:55:00   0:22:00"));
    for (int width = 40; width < 160; ++width)
        expectFits(drawn(width), width);
}

TEST_F(ActivityPictureTest, LetsNothingFromTheLogsDriveTheTerminal)
{
    const auto hostile =
        std::make_shared<ActivityRepository>(ActivityRepository{"/w/\x1b[2J/api", "api", "", false, "x"});
    add("1", hostile, "Title\x1b]0;gone\x07\nnext", {600}, {601});
    add("2", m_api, "", {610}, {});
    add("3",
        std::make_shared<ActivityRepository>(ActivityRepository{"/s", "\x9b\x1b[31m", "", false, "secret"}),
        "", {620}, {});
    const std::string plain = drawn(0);
    EXPECT_EQ(plain.find_first_of("\x1b\x07"), std::string::npos) << plain;
    EXPECT_THAT(plain, HasSubstr("[2J/api")) << "two of one name are shown with their folders";
    EXPECT_THAT(plain, HasSubstr("w/api"));
    EXPECT_THAT(plain, HasSubstr("(no title)"));
    EXPECT_THAT(plain, HasSubstr("(1 session)"));

    const TerminalStyle colourful{.width = 80, .hasColour = true, .hasAllColours = true};
    std::string drawing = ActivityPicture(utc, colourful).day(day());
    EXPECT_THAT(drawing, HasSubstr("\x1b[32;38;2;")) << "bars have their repository's colour";
    EXPECT_EQ(drawing.find("\x1b[2J"), std::string::npos);
}

TEST(BlockBar, DrawsToTheEighth)
{
    const InstantInterval axis{Instant{}, Instant{} + seconds{80}};
    const auto strip = [&](std::vector<InstantInterval> solid, std::vector<InstantInterval> light = {}) {
        return timeStrip(axis, 10, solid, light, {}).render({});
    };
    const auto range = [](int from, int to) {
        return InstantInterval{Instant{} + seconds{from}, Instant{} + seconds{to}};
    };
    EXPECT_EQ(strip({range(0, 19)}), "██▍       ");
    EXPECT_EQ(strip({range(4, 16), range(16, 20)}), "▐█▌       ") << "neighbours leave no seam";
    EXPECT_EQ(strip({range(31, 32), range(33, 34)}), "   ▕▏     ");
    EXPECT_EQ(strip({range(16, 24)}, {range(8, 30), range(79, 80), range(60, 60)}), " ░█░   ░ ░");
    EXPECT_EQ(lengthBar(0.25, 0.5, 10, {}).render({}), "██▌░░     ");
    EXPECT_EQ(lengthBar(0.001, 0, 4, {}).render({}), "▏   ");
    EXPECT_EQ(lengthBar(2, 3, 4, {}).render({}), "████");
}

TEST_F(ActivityPictureTest, IsOneJsonValueForPrograms)
{
    add("codex:1", m_website, "Write", {0}, {1});
    add("codex:2", m_api, "", {}, {1, 2}, "codex:1");
    const ActivityDay day = this->day();
    const std::string json =
        R"({"day":"2020-03-03","attention":[{"repository":{"key":"/w/website","name":"website","origin":null,)"
        R"("isRepository":true,"identity":"w"},"start":"2020-03-03T00:00:00.000Z","end":"2020-03-03T00:15:00.000Z",)"
        R"("sessionIDs":["codex:1"],"prompts":["2020-03-03T00:00:00.000Z"],"branches":["main"]}],)";
    const std::string text = shapes::activityDay(day, {4, 500, 60, 0.25});
    EXPECT_THAT(text, StartsWith(json));
    EXPECT_THAT(text, HasSubstr(R"("source":"claude","parentID":"codex:1","cwd":null,"title":null,)"
                                R"("branches":["main"],"prompts":0,"touches":2}],)"
                                R"("totals":{"attention":{"/w/website":900},"agent":{"/w/api":60}},)"));
    const std::string cost = R"("cost":{"files":4,"bytesRead":500,"peakBufferedBytes":60,"seconds":0.25}})";
    EXPECT_THAT(text, EndsWith(R"("parallel":[],"ignored":[],)" + cost + "\n"));
    const std::string week = shapes::activityWeek(std::array{day, day}, {4, 500, 60, 0.25});
    EXPECT_THAT(week, StartsWith(R"({"days":[)" + json));
    EXPECT_THAT(week, EndsWith(R"("parallel":[],"ignored":[]}],)" + cost + "\n"));
}

} // namespace
} // namespace orvane
