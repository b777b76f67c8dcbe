// SPDX-License-Identifier: GPL-3.0-or-later
// Changing and deleting what entries are on, with the real command and server.
#include "CommandFixture.h"

namespace orvane {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class CatalogCommand : public Command {
protected:
    CatalogCommand() { setNow("2026-03-04T12:00:00Z"); }

    std::string message(int exitStatus, const Arguments &arguments) const
    {
        return text(failed(exitStatus, arguments)[u"message"]);
    }
    /// What is shown on a terminal, where somebody types an answer.
    CommandRun answered(const std::string &call, const std::string &answer) const
    {
        return runProgram("script",
                          {"-qec",
                           builtProgram("orvane") + " --data-dir " + installation.folder() + " " + call,
                           "/dev/null"},
                          installation.environment, answer + "\n");
    }
};

TEST_F(CatalogCommand, SaysWhatADeletionTouchesAndAsks)
{
    done({"clients", "add", "Acme"});
    const std::string website = id(done({"projects", "add", "Website", "--client", "Acme"}));
    done({"tasks", "add", "Website", "Design"});
    done({"tags", "add", "review"});
    done({"add", "x", "--task", "Design", "--tag", "review", "--start", "9:00", "--stop", "10:30"});
    for (const char *year : {"1999", "2019", "2030"})
        done({"add", "x", "--project", "Website", "--start", std::string(year) + "-06-01 9:00", "--stop",
              std::string(year) + "-06-01 10:00"});
    // Half a year ago, where one of the questions ends and the next begins.
    done({"add", "x", "--project", "Website", "--start", "2025-09-03T11:30:00Z", "--stop",
          "2025-09-03T12:30:00Z"});

    EXPECT_THAT(
        message(2, {"projects", "delete", "Website"}),
        AllOf(HasSubstr("Website holds 5 of your entries, 5:30:00; all entries on it lose project and "
                        "task. Its task is deleted with it."),
              HasSubstr("orvane projects archive " + website.substr(0, 8)), HasSubstr("--yes")));
    EXPECT_THAT(message(2, {"tasks", "delete", "Design"}),
                AllOf(HasSubstr("Design holds 1 of your entries, 1:30:00; all entries on it lose the task."),
                      HasSubstr("--no-active")));
    EXPECT_THAT(message(2, {"tags", "delete", "review"}),
                HasSubstr("review is on 1 of your entries, 1:30:00; all entries with it lose it."));
    EXPECT_THAT(message(2, {"clients", "delete", "Acme"}),
                AllOf(HasSubstr("Acme has 1 project: Website; it stays and loses its client."),
                      HasSubstr("orvane clients archive")));

    const CommandRun no = answered("projects delete Website", "");
    EXPECT_EQ(no.exitStatus, 1) << no.all();
    EXPECT_THAT(no.output,
                AllOf(HasSubstr("holds 5 of your entries"), HasSubstr("Delete the project Website?"),
                      HasSubstr("Nothing was changed.")));
    EXPECT_EQ(listed({"projects"}).size(), 1);
    const CommandRun yes = answered("projects delete Website", "y");
    EXPECT_EQ(yes.exitStatus, 0) << yes.all();
    EXPECT_THAT(listed({"projects", "--archived"}), IsEmpty());
}

TEST_F(CatalogCommand, CountsWhatIsNotSentYet)
{
    done({"projects", "add", "Website"});
    done({"projects", "add", "Shop"});
    const std::string entryId = id(entry({"add", "x", "--start", "9:00", "--stop", "10:00"}));
    ASSERT_TRUE(installation.killServer());
    done({"--no-start-server", "edit", entryId, "--project", "Website"});
    onAnotherDevice([&] { done({"edit", entryId, "--project", "Shop"}); });
    EXPECT_THAT(message(2, {"projects", "delete", "Website"}),
                HasSubstr("Website holds 1 of your entries, 1:00:00, 1 not sent yet;"));
    EXPECT_THAT(message(2, {"projects", "delete", "Shop"}), HasSubstr("Shop holds none of your entries;"));
}

TEST_F(CatalogCommand, NamesTheWayAroundWhatTheWorkspaceRequires)
{
    const std::string website = id(done({"projects", "add", "Website"}));
    done({"add", "x", "--project", "Website", "--start", "9:00", "--stop", "10:00"});
    done({"settings", "set", "requireProject", "on"});
    const QJsonObject error = failed(1, {"projects", "delete", "Website", "--yes"});
    EXPECT_EQ(error[u"status"].toInteger(), 403);
    EXPECT_EQ(text(error[u"type"]), "urn:orvane:problem:detail-required");
    EXPECT_THAT(text(error[u"message"]), HasSubstr("orvane projects archive " + website.substr(0, 8)));
}

TEST_F(CatalogCommand, EditsWhatIsNamedAndKeepsTheRest)
{
    done({"clients", "add", "Acme"});
    const QJsonObject made = done({"projects", "add", "Website", "--client", "Acme", "--color", "102030"});
    QJsonObject expected = made;
    const auto edited = [&](Arguments options) {
        options.insert(options.begin(), {"projects", "edit", id(made)});
        return done(options);
    };
    expected[u"hourlyRate"] = 12.5;
    expected[u"estimateSeconds"] = 144000;
    expected[u"isBillable"] = true;
    EXPECT_EQ(edited({"--rate", "12,50", "--estimate", "40h", "--billable"}), expected);
    expected[u"name"] = QStringLiteral("Web");
    expected[u"color"] = QStringLiteral("#33aa77");
    expected[u"isPrivate"] = true;
    EXPECT_EQ(edited({"--name", "Web", "--color", "#33aa77", "--private"}), expected);
    for (const QStringView member : {u"clientId", u"hourlyRate", u"estimateSeconds"})
        expected[member] = QJsonValue();
    expected[u"isBillable"] = false;
    EXPECT_EQ(edited({"--client", "", "--rate=", "--estimate", "", "--no-billable"}), expected);
    EXPECT_THAT(installation.run({"projects", "edit", "Web", "--rate", "80"}).output,
                AllOf(HasSubstr("Changed the project"), HasSubstr("80.00 EUR/h")));

    EXPECT_THAT(message(2, {"projects", "edit", "Web"}), HasSubstr("Say what to change"));
    EXPECT_THAT(message(2, {"projects", "edit", "Web", "--rate", "much"}), HasSubstr("not \"much\""));
    EXPECT_THAT(message(2, {"projects", "edit", "Web", "--estimate", "40"}), HasSubstr("with its unit"));
    EXPECT_THAT(message(2, {"projects", "edit", "Web", "--color", "red"}), HasSubstr("#33aa77"));
    EXPECT_THAT(message(2, {"tags", "edit", "x", "--name", " "}), HasSubstr("cannot be empty"));

    const QJsonObject task = done({"tasks", "add", "Web", "Design"});
    EXPECT_FALSE(done({"tasks", "edit", "Design", "--no-active"})[u"isActive"].toBool(true));
    const QJsonObject renamed = done({"tasks", "edit", id(task), "--name", "Draw"});
    EXPECT_EQ(text(renamed[u"name"]), "Draw");
    EXPECT_FALSE(renamed[u"isActive"].toBool(true)) << "what is not named stays";
    done({"tags", "add", "reviw"});
    EXPECT_EQ(text(done({"tags", "edit", "reviw", "--name", "review"})[u"name"]), "review");
    EXPECT_EQ(text(done({"clients", "edit", "Acme", "--name", "Acme & Sons"})[u"name"]), "Acme & Sons");
}

TEST_F(CatalogCommand, TellsAnUnknownNameAsUnknown)
{
    done({"settings", "set", "requireTag", "on"});
    done({"projects", "add", "Website"});
    EXPECT_EQ(message(1, {"add", "x", "--tag", "newtag", "--start", "9:00", "--stop", "10:00"}),
              "There is no tag \"newtag\". To make it: orvane tags add newtag");
    EXPECT_EQ(
        message(1, {"start", "x", "--project", "Wesbite"}),
        "There is no project \"Wesbite\". Did you mean \"Website\"? To make it: orvane projects add Wesbite");
    EXPECT_THAT(message(1, {"projects", "add", "Shop", "--client", "Big Corp"}),
                HasSubstr("To make it: orvane clients add \"Big Corp\""));
    const std::string old = id(done({"clients", "add", "Old Corp"}));
    done({"clients", "archive", "Old Corp"});
    EXPECT_EQ(message(1, {"projects", "edit", "Website", "--client", "old"}),
              "The client \"Old Corp\" is archived. Take it back with: orvane clients restore " +
                  old.substr(0, 8));
    EXPECT_THAT(message(1, {"projects", "archive", "Wesbite"}),
                AllOf(HasSubstr("Did you mean \"Website\"?"), Not(HasSubstr("To make it"))));
}

} // namespace
} // namespace orvane
