// SPDX-License-Identifier: GPL-3.0-or-later
// The real command on logs in a home folder of its own.
#include "support/CommandRun.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// A home folder with the logs of two agents: on 3 March two prompts in "website" and one in "api".
class ActivityCommand : public testing::Test {
protected:
    void SetUp() override
    {
        const std::string claude = R"("sessionId":"s1","cwd":"/nowhere/website","gitBranch":"main",)";
        write("claude/projects/-nowhere-website/s1.jsonl",
              {R"({"type":"user",)" + claude + message("09:00:00", "user", R"(Write \u001b[31mthe README)"),
               R"({"type":"assistant",)" + claude + message("09:01:00", "assistant", "I will"),
               R"({"type":"assistant",)" + claude + message("09:03:00", "assistant", "Done"),
               R"({"type":"user",)" + claude + message("09:10:00", "user", "Shorter, please")});
        write("codex/sessions/2026/03/03/rollout-2026-03-03T22-00-00-c1.jsonl",
              {R"({"type":"session_meta",)" + stamp("22:00:00") +
                   R"("payload":{"id":"c1","cwd":"/nowhere/api","git":{"branch":"fix"}}})",
               R"({"type":"event_msg",)" + stamp("22:00:01") +
                   R"("payload":{"type":"user_message","message":"Fix the sign-in"}})",
               R"({"type":"response_item",)" + stamp("22:00:31") +
                   R"("payload":{"type":"message","role":"assistant","content":[]}})",
               R"({"type":"response_item",)" + stamp("22:01:01") +
                   R"("payload":{"type":"message","role":"assistant","content":[]}})"});
    }

    static std::string stamp(const std::string &time)
    {
        return R"("timestamp":"2026-03-03T)" + time + R"(.000Z",)";
    }
    static std::string message(const std::string &time, const std::string &role, const std::string &text)
    {
        return stamp(time) + R"("message":{"role":")" + role + R"(","content":[{"type":"text","text":")" +
               text + R"("}]}})";
    }
    /// Once as an agent's own folder and once as a folder of samples.
    void write(const std::string &path, const std::vector<std::string> &lines) const
    {
        for (const std::string &root : {home() + "/.", samples() + "/"}) {
            const QString file = QString::fromStdString(root + path);
            ASSERT_TRUE(QDir().mkpath(QFileInfo(file).path()));
            QFile out(file);
            ASSERT_TRUE(out.open(QIODevice::WriteOnly));
            for (const std::string &line : lines)
                out.write(QByteArray::fromStdString(line + "\n"));
        }
    }
    std::string home() const { return m_folder.filePath(QStringLiteral("home")).toStdString(); }
    std::string samples() const { return m_folder.filePath(QStringLiteral("samples")).toStdString(); }

    Arguments call(Arguments more) const
    {
        more.insert(more.begin(), {"--home", home(), "activity"});
        return more;
    }
    bool hasTouchedInstallation() const
    {
        return !QDir(QString::fromStdString(installation.folder())).isEmpty();
    }

    QTemporaryDir m_folder;
    TestInstallation installation;
};

TEST_F(ActivityCommand, AnswersProgramsWithADayOrAWeek)
{
    const CommandRun run = installation.json(call({"--day", "2026-03-03", "--zone", "UTC", "--no-cache"}));
    ASSERT_EQ(run.exitStatus, 0) << run.all();
    EXPECT_THAT(run.errors, IsEmpty());
    const QJsonObject day = run.object();
    EXPECT_EQ(day.keys().join(u','),
              QStringLiteral("attention,blocks,cost,day,ignored,parallel,runs,sessions,totals"));
    const QJsonObject totals = day[u"totals"].toObject();
    EXPECT_EQ(totals[u"attention"].toObject()[u"/nowhere/website"], 600 + 900);
    EXPECT_EQ(totals[u"attention"].toObject()[u"/nowhere/api"], 900);
    EXPECT_EQ(totals[u"agent"].toObject()[u"/nowhere/website"], 120);
    EXPECT_EQ(totals[u"agent"].toObject()[u"/nowhere/api"], 30);
    ASSERT_EQ(day[u"sessions"].toArray().size(), 2);
    EXPECT_EQ(day[u"sessions"].toArray()[1].toObject()[u"id"], QStringLiteral("codex:c1"));
    EXPECT_EQ(day[u"blocks"].toArray().size(), 2);
    EXPECT_EQ(day[u"cost"].toObject()[u"files"], 2);
    EXPECT_GT(day[u"cost"].toObject()[u"bytesRead"].toInteger(), 500);

    const QJsonObject sample =
        installation.json({"--fixtures", samples(), "--zone", "UTC", "activity", "--day", "2026-03-03"})
            .object();
    EXPECT_EQ(sample[u"totals"], day[u"totals"]);

    // In Tokyo the evening's work is of the next day.
    const QJsonObject week =
        installation.json(call({"--week", "2026-03-03", "--zone", "Asia/Tokyo"})).object();
    const QJsonArray days = week[u"days"].toArray();
    ASSERT_EQ(days.size(), 7);
    EXPECT_EQ(days[1].toObject()[u"day"], QStringLiteral("2026-03-03"));
    EXPECT_EQ(days[1].toObject()[u"sessions"].toArray().size(), 1);
    EXPECT_EQ(days[2].toObject()[u"sessions"].toArray().size(), 1);
    EXPECT_FALSE(days[1].toObject().contains(u"cost"));
    EXPECT_TRUE(week.contains(u"cost"));
    EXPECT_FALSE(hasTouchedInstallation()) << "no server is started, no account made";
}

TEST_F(ActivityCommand, DrawsForPeople)
{
    const CommandRun day = installation.run(call({"--day", "2026-03-03", "--zone", "UTC"}));
    EXPECT_EQ(day.exitStatus, 0) << day.all();
    EXPECT_THAT(day.output, HasSubstr("website"));
    EXPECT_THAT(day.output, HasSubstr("0:25:00"));
    EXPECT_THAT(day.output, HasSubstr("Write the README"));
    EXPECT_THAT(day.output, Not(HasSubstr("\x1b")));
    const CommandRun week = installation.run(call({"--week", "2026-03-03", "--zone", "UTC"}));
    EXPECT_THAT(week.output, HasSubstr("0:40:00"));

    installation.environment["ORVANE_NOW"] = "2026-03-05T10:00:00Z";
    const CommandRun idle = installation.run(call({"--zone", "UTC"}));
    EXPECT_EQ(idle.exitStatus, 0);
    EXPECT_THAT(idle.output, HasSubstr("No agent was at work today. Looked in:\n  " + home() + "/.claude\n"));
    EXPECT_THAT(idle.output, HasSubstr(home() + "/.copilot (not there)\n"));
    const CommandRun nobody = installation.run({"--home", installation.folder(), "activity"});
    EXPECT_THAT(nobody.output, HasSubstr("No agent has kept a log yet."));

    EXPECT_EQ(installation.run(call({"--day", "soon"})).exitStatus, 2);
    EXPECT_EQ(installation.run(call({"--day", "today", "--week", "today"})).exitStatus, 2);
    EXPECT_FALSE(hasTouchedInstallation());
}

TEST_F(ActivityCommand, KnowsTheAccountsTimeWithoutItsServer)
{
    installation.environment["TZ"] = "Asia/Tokyo";
    ASSERT_EQ(installation.json({"settings", "set", "durationFormat", "decimal"}).exitStatus, 0);
    ASSERT_TRUE(installation.killServer());
    installation.environment["TZ"] = "UTC";
    const CommandRun day = installation.run(call({"--day", "2026-03-04"}));
    EXPECT_THAT(day.output, HasSubstr("07:00 – 07:01")) << day.all();
    EXPECT_THAT(day.output, HasSubstr("0.25 h"));
    EXPECT_FALSE(installation.hello()) << "the server stays away";
}

} // namespace
} // namespace orvane
