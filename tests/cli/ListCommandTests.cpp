// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandFixture.h"

#include <filesystem>

namespace orvane {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Wednesday 4 March 2026, with work of January and of this week.
class ListCommand : public Command {
protected:
    ListCommand()
    {
        installation.environment["TZ"] = "UTC";
        setNow("2026-03-04T15:00:00Z");
        done({"clients", "add", "Acme"});
        done({"projects", "add", "Website", "--client", "Acme"});
        done({"projects", "add", "Warehouse"});
        done({"tags", "add", "deep"});
        done({"tags", "add", "review"});
        add("@website Old work", "2026-01-31 23:00", "2026-02-01 01:00");
        add("@website #deep Night", "2026-03-02 23:00", "2026-03-03 00:30");
        add("@warehouse #deep #review Fix", "2026-03-03 09:00", "2026-03-03 10:00", "--billable");
        done({"start", "Running", "--start", "15:00"});
        setNow("2026-03-04T15:30:00Z");
    }

    void add(const std::string &sentence, const std::string &start, const std::string &stop,
             const std::string &billable = "--no-billable")
    {
        done({"add", sentence, "--start", start, "--stop", stop, billable});
    }
    /// "2026-03-03 3600 Fix, …" of each day.
    std::vector<std::string> days(Arguments arguments) const
    {
        arguments.insert(arguments.begin(), "list");
        std::vector<std::string> texts;
        for (const QJsonValue &day : done(arguments)[u"days"].toArray()) {
            std::string line =
                text(day.toObject()[u"day"]) + " " + std::to_string(day.toObject()[u"seconds"].toInteger());
            for (const QJsonValue &entry : day.toObject()[u"entries"].toArray())
                line += " " + text(entry.toObject()[u"description"]);
            texts.push_back(line);
        }
        return texts;
    }
    /// "Website 5400/0" of each group, and the total.
    std::vector<std::string> groups(const Arguments &arguments) const
    {
        const QJsonObject report = done(arguments);
        std::vector<std::string> texts;
        QJsonArray lines = report[u"groups"].toArray();
        lines.append(report);
        for (const QJsonValue &line : lines)
            texts.push_back(text(line.toObject()[u"name"]) + " " +
                            std::to_string(line.toObject()[u"seconds"].toInteger()) + "/" +
                            std::to_string(line.toObject()[u"billableSeconds"].toInteger()));
        return texts;
    }
};

TEST_F(ListCommand, GoesOverTheDaysThatAreNamed)
{
    EXPECT_THAT(days({"yesterday"}), ElementsAre("2026-03-03 3600 Fix"));
    EXPECT_THAT(days({"mon"}), ElementsAre("2026-03-02 5400 Night"));
    EXPECT_THAT(days({}), ElementsAre("2026-03-04 1800 Running"));
    EXPECT_THAT(days({"--from", "2026-01-31", "--to", "2026-02-01"}),
                ElementsAre("2026-01-31 7200 Old work", "2026-02-01 0"))
        << "on the day it starts";
    EXPECT_THAT(days({"--from", "2026-03-02", "--to", "2026-03-03", "--client", "acme"}),
                ElementsAre("2026-03-02 5400 Night", "2026-03-03 0"));
    EXPECT_EQ(days({"--month"}).size(), 31U);
    EXPECT_EQ(days({"--month", "2026-02-10"}).size(), 28U);
    EXPECT_EQ(days({"--week"}).size(), 7U);
    for (const Arguments &wrong :
         {Arguments{"list", "--to", "today"}, Arguments{"list", "--from", "today", "--to", "yesterday"},
          Arguments{"list", "mon", "--month"}, Arguments{"list", "someday"},
          Arguments{"list", "--by", "day"}})
        EXPECT_FALSE(failed(2, wrong).isEmpty());
    EXPECT_THAT(text(failed(1, {"list", "--project", "nowhere"})[u"message"]), HasSubstr("Warehouse"));
    EXPECT_EQ(installation.run({"list", "--month", "2025-01-01"}).output,
              "Nothing tracked in January 2025.\n");
    const std::string month = installation.run({"list", "--month"}).output;
    EXPECT_THAT(month, AllOf(HasSubstr("Mon, 2 Mar"), HasSubstr("Night"), Not(HasSubstr("Sun, 1 Mar"))));
}

TEST_F(ListCommand, AddsUpByWhatTheTimeWasFor)
{
    const Arguments all{"list", "--from", "2026-01-01", "--by"};
    const auto by = [&](const std::string &kind, const Arguments &more = {}) {
        Arguments arguments = all;
        arguments.push_back(kind);
        arguments.insert(arguments.end(), more.begin(), more.end());
        return groups(arguments);
    };
    EXPECT_THAT(by("project"), ElementsAre("Website 12600/0", "Warehouse 3600/3600", " 16200/3600"))
        << "what runs counts nowhere";
    EXPECT_THAT(by("client"), ElementsAre("Acme 12600/0", " 3600/3600", " 16200/3600"));
    EXPECT_THAT(by("tag"), ElementsAre("deep 9000/3600", "review 3600/3600", " 7200/0", " 16200/3600"));
    EXPECT_THAT(by("project", {"--tag", "deep"}),
                ElementsAre("Website 5400/0", "Warehouse 3600/3600", " 9000/3600"));
    const QJsonObject report = done({"list", "yesterday", "--by", "project"});
    EXPECT_EQ(keys(report), (Names{"amount", "billableSeconds", "currency", "groups", "seconds"}));
    EXPECT_EQ(keys(report[u"groups"].toArray()[0].toObject()),
              (Names{"amount", "billableSeconds", "color", "currency", "id", "name", "seconds"}));
    EXPECT_TRUE(report[u"amount"].isNull()) << "there is no rate";
    const CommandRun shown = installation.run({"list", "--month", "--by", "project"});
    EXPECT_THAT(shown.output, AllOf(HasSubstr("March 2026\n"), HasSubstr("Warehouse"), HasSubstr("100%"),
                                    HasSubstr("Total")));
    EXPECT_THAT(shown.errors, HasSubstr("no hourly rate"));
}

TEST_F(ListCommand, TellsWithoutTheServerWhatIsKnown)
{
    done({"list"});
    ASSERT_TRUE(installation.killServer());
    const auto offline = [](Arguments arguments) {
        arguments.insert(arguments.begin(), "--no-start-server");
        return arguments;
    };
    EXPECT_THAT(groups(offline({"list", "--week", "--by", "project"})),
                ElementsAre("Website 5400/0", "Warehouse 3600/3600", " 9000/3600"));
    const CommandRun month = installation.run(offline({"list", "--month"}));
    EXPECT_THAT(month.errors, HasSubstr("only 2026-03-02 – 2026-03-08 are kept"));
    EXPECT_THAT(month.output, HasSubstr("Night"));
    EXPECT_FALSE(failed(1, offline({"list", "--month", "--by", "project"})).isEmpty())
        << "a program would take a part for the sum";
    EXPECT_FALSE(failed(1, offline({"list", "2026-01-31"})).isEmpty());
}

TEST_F(ListCommand, AnswersABarFromWhatIsKept)
{
    const auto line = [&](const Arguments &options = {}) {
        Arguments arguments = options;
        arguments.insert(arguments.end(),
                         {"status", "--format", "{running}|{elapsed}|{today}|{project}|{waiting}"});
        const CommandRun run = installation.run(arguments);
        EXPECT_EQ(run.exitStatus, 0) << run.all();
        return run.output;
    };
    done({"status"});
    EXPECT_THAT(line(), testing::MatchesRegex("Running.0:(29|30):.*0:(29|30):.*.0\n"));
    ASSERT_TRUE(installation.killServer());
    done({"--no-start-server", "stop", "--at", "2026-03-04 15:10"});
    done({"--no-start-server", "start", "@website C#[fg=red] $(id)"});
    const QJsonObject status = done({"--no-start-server", "status"});
    EXPECT_NEAR(static_cast<double>(status[u"today"].toObject()[u"seconds"].toInteger()), 600, 10);
    EXPECT_THAT(line(), testing::MatchesRegex("C＃\\[fg=red\\] .*.0:00:.*.0:(09|10):.*Website.2\n"));
    EXPECT_EQ(line({"--workspace", "another"}), "\n");
    EXPECT_FALSE(installation.hello()) << "no server was started for it";
    EXPECT_FALSE(failed(2, {"status", "--format", "{running}"}).isEmpty()) << "a line is no JSON";

    const TestInstallation fresh;
    EXPECT_EQ(fresh.run({"status", "--format", "{today}"}).output, "\n");
    EXPECT_EQ(fresh.run({"status", "--format", "{day}"}).exitStatus, 2);
    EXPECT_TRUE(std::filesystem::is_empty(fresh.folder())) << "and nothing was made";
}

} // namespace
} // namespace orvane
