// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/AgentActivityLoader.h"
#include "AgentLogs/AgentLogFormat.h"
#include "Support/DateText.h"
#include "support/Await.h"

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <sys/stat.h>

namespace orvane {
namespace {

using orvane::testing::await;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::SizeIs;

const DayKey tuesday{2026, 3, 3};
const Instant midnight = UserTime::utc().startOfDay(tuesday);

std::string stamp(int second)
{
    return iso8601Text(midnight + std::chrono::seconds{second});
}

/// A line of Claude Code; `message` is what stands in "content".
std::string claudeLine(int second, const std::string &type, const std::string &session,
                       const std::string &folder, const std::string &content, const std::string &more = {})
{
    return R"({"parentUuid":null,"isSidechain":)" + std::string(more == "side" ? "true" : "false") +
           R"(,"cwd":")" + folder + R"(","sessionId":")" + session + R"(","gitBranch":"main","type":")" +
           type + R"(","message":{"role":"x","content":)" + content + R"(},"uuid":"u","timestamp":")" +
           stamp(second) + "\"}\n";
}
std::string prompted(int second, const std::string &session, const std::string &folder,
                     const std::string &text)
{
    return claudeLine(second, "user", session, folder, "\"" + text + "\"");
}
std::string worked(int second, const std::string &session, const std::string &folder,
                   const std::string &more = {})
{
    return claudeLine(second, "assistant", session, folder,
                      R"([{"type":"tool_use","id":"t","name":"Edit","input":{"a":"}]\"{"}}])", more);
}

std::string codexLine(int second, const std::string &type, const std::string &payload)
{
    return R"({"timestamp":")" + stamp(second) + R"(","type":")" + type + R"(","payload":)" + payload + "}\n";
}

/// Everything that a day says, to compare two.
std::string told(const ActivityDay &day)
{
    std::string out = day.day.description() + "\n";
    const auto range = [](InstantInterval interval) {
        return iso8601Text(interval.from) + "/" + iso8601Text(interval.to) + " ";
    };
    for (const AttentionSegment &segment : day.attention)
        out += "attention " + range(segment.range) + segment.repository->key + " " +
               segment.sessionIDs.front() + "\n";
    for (const AgentRun &run : day.runs)
        out += "run " + range(run.range) + run.repository->key + " " + run.sessionID + "\n";
    for (const AgentSession &session : day.sessions) {
        out += "session " + session.id + " '" + session.title + "' " + session.cwd + " " + session.parentID +
               "\n";
        for (const AgentEvent &event : session.events)
            out += (event.isTouch ? " t" : " p") + iso8601Text(event.date);
        for (const std::string &branch : session.branches)
            out += " " + branch;
        out += "\n";
    }
    return out;
}

class AgentActivityLoaderTest : public ::testing::Test {
protected:
    AgentActivityLoaderTest()
        // Temporary folders are links on some systems.
        : m_home(QDir(m_folder.path()).canonicalPath().toStdString())
    {
        request.home = m_home;
        request.days = {tuesday};
    }
    std::string path(const std::string &name) const { return m_home + "/" + name; }
    std::string claude(const std::string &name) const { return path(".claude/projects/" + name); }

    /// The file was last written long after the day, whatever the clock says.
    static void write(const std::string &file, const std::string &text,
                      std::ios::openmode mode = std::ios::trunc)
    {
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        std::ofstream(file, std::ios::binary | std::ios::out | mode) << text;
    }
    static void append(const std::string &file, const std::string &text) { write(file, text, std::ios::app); }
    static void setWritten(const std::string &file, int second)
    {
        const auto when = std::chrono::floor<std::chrono::seconds>(midnight) + std::chrono::seconds{second};
        const timespec time{when.time_since_epoch().count(), 0};
        const timespec times[] = {time, time};
        ASSERT_EQ(::utimensat(AT_FDCWD, file.c_str(), times, 0), 0);
    }
    static void git(const std::string &folder, const char *arguments)
    {
        QProcess process;
        process.setWorkingDirectory(QString::fromStdString(folder));
        process.start(QStringLiteral("git"), QString::fromUtf8(arguments).split(QLatin1Char(' ')));
        ASSERT_TRUE(process.waitForFinished() && process.exitCode() == 0)
            << process.readAllStandardError().toStdString();
    }

    AgentActivityLoader::Answer ask() { return await(loader.days(request)); }
    std::string tell()
    {
        std::string out;
        for (const ActivityDay &day : *ask().days)
            out += told(day);
        return out;
    }
    /// What somebody tells who reads everything from the start.
    std::string tellAnew() const
    {
        AgentActivityLoader other;
        std::string out;
        for (const ActivityDay &day : *await(other.days(request)).days)
            out += told(day);
        return out;
    }

    AgentActivityLoader::Request request;
    AgentActivityLoader loader;

private:
    QTemporaryDir m_folder;
    std::string m_home;
};

TEST_F(AgentActivityLoaderTest, TellsADayOfThreeAgents)
{
    std::filesystem::create_directories(path("web"));
    std::filesystem::create_directories(path("api"));
    git(path("web"), "init -q");
    git(path("web"), "remote add origin https://example.com/acme/web.git");
    const std::string web = path("web");
    write(claude("-web/s1.jsonl"), prompted(3600, "s1", web + "/src", "Mend the sync") +
                                       worked(3660, "s1", web + "/src") + worked(3720, "s1", web + "/src"));
    write(claude("-web/s1/subagents/agent-1.jsonl"),
          claudeLine(3665, "user", "s1", web, "\"Look around\"", "side") + worked(3700, "s1", web, "side"));
    write(path(".codex/sessions/2026/03/03/rollout-1.jsonl"),
          codexLine(3900, "session_meta",
                    R"({"id":"c1","cwd":")" + path("api") + R"(","source":"cli","git":{"branch":"fix"}})") +
              codexLine(3901, "event_msg", R"({"type":"task_started","turn_id":"d"})") +
              codexLine(3902, "event_msg", R"({"type":"user_message","message":"Add a test"})") +
              codexLine(3960, "response_item", R"({"type":"message","role":"assistant","content":[]})"));
    write(path(".codex/session_index.jsonl"), "{\"id\":\"c1\",\"thread_name\":\"Old\"}\nbroken\n"
                                              "{\"id\":\"c1\",\"thread_name\":\"The test\"}\n");
    write(path(".copilot/session-state/p1/events.jsonl"),
          R"({"type":"session.start","data":{"sessionId":"p1","context":{"cwd":")" + path("api") +
              R"("}},"timestamp":")" + stamp(7200) + "\"}\n" +
              R"({"type":"user.message","data":{"content":"Why?"},"timestamp":")" + stamp(7200) + "\"}\n" +
              R"({"type":"assistant.message","data":{},"timestamp":")" + stamp(7230) + "\"}\n");

    const auto answer = ask();
    ASSERT_THAT(*answer.days, SizeIs(1));
    const ActivityDay &day = answer.days->front();
    EXPECT_EQ(answer.cost.files, 4);
    EXPECT_THAT(day.totals.attention, ElementsAre(Pair(path("api"), 1800), Pair(web, 302)));
    EXPECT_THAT(day.totals.agent, ElementsAre(Pair(path("api"), 59 + 0), Pair(web, 60)));
    ASSERT_THAT(day.attention, SizeIs(3));
    EXPECT_EQ(day.attention[0].repository->identity, "origin:example.com/acme/web");
    ASSERT_THAT(day.sessions, SizeIs(3));
    EXPECT_EQ(day.sessions[0].title, "Mend the sync");
    // The order to the sub-agent is no prompt; its work is the session's.
    EXPECT_THAT(day.sessions[0].events, SizeIs(4));
    EXPECT_EQ(day.sessions[1].title, "The test");
    EXPECT_THAT(day.sessions[1].branches, ElementsAre("fix"));
    EXPECT_EQ(day.sessions[2].id, "copilot:p1");

    request.ignoring = {"origin:example.com/acme/web"};
    const auto without = ask();
    EXPECT_EQ(without.cost.bytesRead, 0) << "another request is answered from what was read";
    EXPECT_FALSE(without.days->front().totals.attention.contains(web));
    ASSERT_THAT(without.days->front().ignored, SizeIs(1));
    EXPECT_EQ(without.days->front().ignored[0].name, "web");
}

TEST_F(AgentActivityLoaderTest, ReadsOnlyWhatWasAdded)
{
    const std::string log = claude("-p/s1.jsonl");
    std::string text = prompted(10, "s1", path("p"), "Begin");
    while (text.size() < 100'000)
        text += worked(20, "s1", path("p"));
    write(log, text);
    EXPECT_GE(ask().cost.bytesRead, 100'000);
    EXPECT_EQ(ask().cost.bytesRead, 0);

    const std::string half = worked(90, "s1", path("p"));
    append(log, half.substr(0, 50));
    const std::string before = tell();
    append(log, half.substr(50));
    const auto grown = ask();
    // The new line and what shows that the file is still the same, before and after.
    EXPECT_LE(grown.cost.bytesRead, std::ssize(half) + 2 * (4096 + 64));
    EXPECT_EQ(grown.days->front().runs.front().range.to, midnight + std::chrono::seconds{90});
    EXPECT_NE(tell(), before);
    EXPECT_EQ(tell(), tellAnew());

    await(loader.clear());
    EXPECT_GE(ask().cost.bytesRead, 100'000);
}

TEST_F(AgentActivityLoaderTest, SeesThroughWhatHappensToFiles)
{
    const std::string log = claude("-p/s1.jsonl");
    const std::string begin = prompted(10, "s1", path("p"), "Begin");
    const std::string end = worked(300, "s1", path("p"));
    write(log, begin + worked(20, "s1", path("p")) + end);
    tell();

    write(log, begin); // cut
    EXPECT_EQ(tell(), tellAnew());
    write(log, prompted(40, "s1", path("q"), "Other") + worked(60, "s1", path("q"))); // written anew, longer
    EXPECT_EQ(tell(), tellAnew());
    write(path("new"), begin + end);
    std::filesystem::rename(path("new"), log); // replaced
    EXPECT_EQ(tell(), tellAnew());
    std::filesystem::rename(log, claude("-p/s2.jsonl"));
    EXPECT_EQ(tell(), tellAnew());
    EXPECT_THAT(tell(), ::testing::HasSubstr("attention"));

    std::filesystem::remove(claude("-p/s2.jsonl"));
    ASSERT_EQ(::mkfifo(claude("-p/pipe.jsonl").c_str(), 0600), 0);
    std::filesystem::create_symlink(claude("-p/nowhere"), claude("-p/dangling.jsonl"));
    std::filesystem::create_directories(claude("-p/folder.jsonl"));
    EXPECT_THAT(ask().days->front().sessions, IsEmpty());

    // One whose first line names no session within reason spoils nothing for the others.
    write(claude("-p/long.jsonl"), std::string(2'000'000, ' ') + "\n" + begin);
    write(claude("-p/s3.jsonl"), begin);
    EXPECT_THAT(ask().days->front().sessions, SizeIs(1));
    EXPECT_EQ(ask().cost.bytesRead, 0);
}

TEST_F(AgentActivityLoaderTest, FollowsTitlesAndRepositories)
{
    std::filesystem::create_directories(path("p"));
    write(path(".codex/sessions/rollout-1.jsonl"),
          codexLine(10, "session_meta", R"({"id":"c1","cwd":")" + path("p") + R"(","source":"cli"})") +
              codexLine(20, "event_msg", R"({"type":"user_message","message":"Add a test"})"));
    const auto first = ask();
    EXPECT_EQ(first.days->front().sessions.front().title, "Add a test");
    EXPECT_FALSE(first.days->front().attention.front().repository->isRepository);

    write(path(".codex/session_index.jsonl"), "{\"id\":\"c1\",\"thread_name\":\"Tests\"}\n");
    git(path("p"), "init -q");
    const auto second = ask();
    EXPECT_EQ(second.cost.bytesRead, 0);
    EXPECT_EQ(second.days->front().sessions.front().title, "Tests");
    EXPECT_TRUE(second.days->front().attention.front().repository->isRepository);

    git(path("p"), "remote add origin git@example.com:acme/p.git");
    EXPECT_EQ(ask().days->front().attention.front().repository->identity, "origin:example.com/acme/p");
}

TEST_F(AgentActivityLoaderTest, LeavesUnreadWhatCannotHoldTheDay)
{
    const std::string line = prompted(40'000, "s1", path("p"), "Today");
    write(claude("-p/s1.jsonl"), line);
    write(claude("-p/s1/subagents/agent-1.jsonl"), worked(-85'000, "s1", path("p"), "side"));
    setWritten(claude("-p/s1/subagents/agent-1.jsonl"), -84'000);
    write(claude("-p/s0.jsonl"),
          prompted(-80'000, "s0", path("p"), "Yesterday") + std::string(50'000, ' ') + "\n");
    setWritten(claude("-p/s0.jsonl"), -70'000);
    const auto answer = ask();
    EXPECT_LT(answer.cost.bytesRead, 40'000);
    ASSERT_THAT(answer.days->front().sessions, SizeIs(1));
    EXPECT_THAT(answer.days->front().sessions[0].events, SizeIs(2))
        << "the whole session, though part of it is old";

    request.days = {tuesday.adding(-1), tuesday};
    EXPECT_EQ(tell(), tellAnew());
    EXPECT_THAT(ask().days->front().sessions, SizeIs(2));
}

/// Random logs, written piece by piece at any byte.
TEST_F(AgentActivityLoaderTest, TellsTheSameHoweverTheLogsGrew)
{
    std::mt19937 random(20'260'303);
    const auto pick = [&](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
    const std::string folders[] = {path("a"), path("b")};
    const std::string files[] = {claude("-a/s1.jsonl"), claude("-a/s1/subagents/agent-1.jsonl"),
                                 path(".codex/sessions/rollout-1.jsonl")};
    std::string texts[3];
    texts[2] = codexLine(0, "session_meta", R"({"id":"c1","cwd":")" + path("b") + R"(","source":"cli"})");
    for (int i = 0; i < 150; ++i) {
        const int second = i * 60 + pick(120);
        switch (pick(6)) {
        case 0:
            texts[0] += prompted(second, "s1", folders[pick(2)], "Prompt " + std::to_string(i));
            break;
        case 1:
            texts[0] += claudeLine(second, "assistant", "s1", path("a"),
                                   R"([{"type":"tool_use","name":"mcp__orvane__status","input":{}}])");
            break;
        case 2:
            texts[1] += worked(second, "s1", path("a"), "side");
            break;
        case 3:
            texts[2] += codexLine(second, "event_msg", R"({"type":"user_message","message":"Ask"})");
            break;
        case 4:
            texts[2] += codexLine(second, "response_item", R"({"type":"function_call","name":"f"})");
            break;
        default:
            texts[0] += pick(2) == 0 ? "{\"type\":\"user\",\"cut\n" : worked(second, "s1", path("a"));
        }
    }
    std::size_t written[3] = {};
    for (bool isGrowing = true; isGrowing;) {
        isGrowing = false;
        for (int file = 0; file < 3; ++file) {
            const std::size_t left = texts[file].size() - written[file];
            const std::size_t piece = std::min(left, static_cast<std::size_t>(pick(700)));
            append(files[file], texts[file].substr(written[file], piece));
            written[file] += piece;
            isGrowing |= left > piece;
        }
        ASSERT_EQ(tell(), tellAnew());
    }
    EXPECT_THAT(tell(), ::testing::HasSubstr("codex:c1"));
    EXPECT_THAT(tell(), ::testing::HasSubstr("run "));
}

TEST_F(AgentActivityLoaderTest, AnswersThoseWhoAskAtOnce)
{
    for (int i = 0; i < 40; ++i) {
        const std::string id = "s" + std::to_string(i);
        write(claude("-p/" + id + ".jsonl"),
              prompted(i * 10, id, path("p"), "Begin") + worked(i * 10 + 5, id, path("p")));
    }
    std::int64_t last = 0;
    auto first =
        loader.days(request, [&last](AgentActivityLoader::Progress progress) { last = progress.done; });
    auto second = loader.days(request);
    auto forgotten = loader.clear();
    auto third = loader.days(request);
    const auto one = await(std::move(first));
    const auto other = await(std::move(second));
    await(std::move(forgotten));
    const auto again = await(std::move(third));
    EXPECT_EQ(told(one.days->front()), told(other.days->front()));
    EXPECT_EQ(told(one.days->front()), told(again.days->front()));
    EXPECT_THAT(one.days->front().sessions, SizeIs(40));
    EXPECT_GT(again.cost.bytesRead, 0) << "everything was forgotten before";
    EXPECT_LE(last, one.cost.bytesRead);
}

} // namespace
} // namespace orvane
