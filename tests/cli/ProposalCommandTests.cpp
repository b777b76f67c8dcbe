// SPDX-License-Identifier: GPL-3.0-or-later
// What an agent proposed, settled at the terminal.
#include "CommandFixture.h"

#include "Account/Account.h"
#include "Account/Installation.h"
#include "Client/OrvaneClient.h"
#include "support/AccountStack.h"
#include "support/Await.h"

namespace orvane {
namespace {

using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class ProposalCommand : public Command {
protected:
    ProposalCommand()
    {
        setNow("2026-03-04T12:00:00Z");
        installation.environment["COLUMNS"] = "100";
    }

    CommandRun run(Arguments arguments) const
    {
        arguments.insert(arguments.begin(), {"--zone", "UTC"});
        return installation.run(arguments);
    }
    QJsonObject did(Arguments arguments) const
    {
        arguments.insert(arguments.begin(), {"--zone", "UTC"});
        return done(arguments);
    }

    /// As an agent does, which the terminal has no words for.
    template <class Work>
    void withAccount(Work work)
    {
        Installation own(installation.folder());
        auto account = orvane::testing::await(orvane::testing::openAccount(own, true));
        ASSERT_TRUE(account) << account.error().message;
        work(**account, (*account)->tracker().workspace().id);
        orvane::testing::await((*account)->close());
    }
    /// Of the morning of 4 March; answers its identifier.
    std::string propose(const std::string &description, std::chrono::minutes from, std::chrono::minutes to,
                        const std::string &reason = {})
    {
        const Instant midnight = std::chrono::sys_days(2026y / 3 / 4);
        ProposeEntriesRequest request;
        request.entries.emplace_back();
        request.entries[0].description = description;
        request.entries[0].start = midnight + from;
        request.entries[0].stop = midnight + to;
        if (!reason.empty())
            request.entries[0].reason = reason;
        std::string made;
        withAccount([&](Account &account, const std::string &workspace) {
            const auto outcomes = orvane::testing::await(account.client().proposeEntries(workspace, request));
            ASSERT_TRUE(outcomes && outcomes->at(0).proposal);
            made = outcomes->at(0).proposal->id;
        });
        return made;
    }
    std::string proposeChange(const QJsonObject &entry,
                              const std::function<void(ProposedChangeRequest &)> &change)
    {
        ProposeChangesRequest request;
        request.changes.emplace_back();
        request.changes[0].entryId = id(entry);
        request.changes[0].version = text(entry[u"version"]);
        change(request.changes[0]);
        std::string made;
        withAccount([&](Account &account, const std::string &workspace) {
            const auto outcomes = orvane::testing::await(account.client().proposeChanges(workspace, request));
            ASSERT_TRUE(outcomes && outcomes->at(0).proposal);
            made = outcomes->at(0).proposal->id;
        });
        return made;
    }

    Names today() const
    {
        Names names;
        for (const QJsonValue &entry : did({"status"})[u"today"][u"entries"].toArray())
            names.push_back(text(entry[u"description"]));
        return names;
    }
};

TEST_F(ProposalCommand, SaysWhatToDoWhileThereIsNone)
{
    const CommandRun none = run({"proposals"});
    EXPECT_EQ(none.exitStatus, 0) << none.all();
    EXPECT_THAT(none.output, HasSubstr("orvane connect claude"));
    const QJsonObject empty = did({"proposals"});
    EXPECT_EQ(keys(empty), (Names{"pendingCount", "proposals"}));
    const CommandRun unknown = run({"proposals", "apply", "abc"});
    EXPECT_EQ(unknown.exitStatus, 1);
    EXPECT_THAT(unknown.errors, HasSubstr("No proposal that waits has the ID abc"));
    EXPECT_EQ(run({"proposals", "apply"}).exitStatus, 2);
}

TEST_F(ProposalCommand, ListsWhatWaitsWithBeforeAndAfter)
{
    did({"projects", "add", "Website"});
    const QJsonObject entry = did({"add", "Write the README 8:00-8:30"})[u"entry"].toObject();
    const std::string project = id(listed({"projects"}).at(0).toObject());
    const std::string work = propose("Fix the\tlogin", 9h, 9h + 36min, "You edited it.\nTwice.");
    proposeChange(entry, [&](ProposedChangeRequest &change) {
        change.project = ProjectChoice{project, {}};
        change.description = "Write the manual";
    });
    const CommandRun list = run({"proposals"});
    EXPECT_EQ(list.exitStatus, 0) << list.all();
    EXPECT_THAT(list.output,
                AllOf(HasSubstr("Today, 09:00 – 09:36"), HasSubstr("36m"), HasSubstr("New entry"),
                      HasSubstr("Fix the login"), HasSubstr("    “You edited it. Twice.”\n"),
                      HasSubstr("    Description  Write the README → Write the manual\n"),
                      HasSubstr("    Project      No project → Website\n"), HasSubstr(work.substr(0, 6))));
    EXPECT_THAT(list.errors, HasSubstr("orvane proposals apply " + work.substr(0, 6)));
    const QJsonObject all = did({"proposals"});
    EXPECT_EQ(all[u"pendingCount"].toInt(), 2);
    EXPECT_EQ(keys(all[u"proposals"].toArray().at(0).toObject()),
              (Names{"agentName", "createdAt", "entryId", "id", "kind", "note", "plan", "resolvedAt",
                     "status", "workspaceId"}));
    EXPECT_EQ(today(), Names{"Write the README"}) << "nothing has changed yet";
}

TEST_F(ProposalCommand, AppliesOneAndUndoesIt)
{
    const QJsonObject entry = did({"add", "Write the README 8:00-8:30"})[u"entry"].toObject();
    const std::string work = propose("Fix the login", 9h, 9h + 36min);
    const CommandRun applied = run({"proposals", "apply", work.substr(0, 8)});
    EXPECT_EQ(applied.exitStatus, 0) << applied.all();
    EXPECT_THAT(applied.output, AllOf(HasSubstr("Applied"), HasSubstr("Fix the login")));
    EXPECT_THAT(today(), ElementsAre("Write the README", "Fix the login"));
    EXPECT_EQ(run({"proposals", "apply", work}).exitStatus, 1) << "it no longer waits";

    const std::string removal =
        proposeChange(entry, [](ProposedChangeRequest &change) { change.remove = true; });
    EXPECT_THAT(did({"proposals", "apply", removal})[u"entries"].toArray(), IsEmpty());
    EXPECT_EQ(today(), Names{"Fix the login"});

    const CommandRun back = run({"undo"});
    EXPECT_EQ(back.exitStatus, 0) << back.all();
    EXPECT_THAT(back.output, AllOf(HasSubstr("Made again"), HasSubstr("The proposal waits again.")));
    EXPECT_THAT(today(), ElementsAre("Write the README", "Fix the login"));
    EXPECT_EQ(text(did({"undo"})[u"outcome"]), "saved");
    EXPECT_EQ(today(), Names{"Write the README"});
    EXPECT_EQ(did({"proposals"})[u"pendingCount"].toInt(), 2);
    // What was done before them is next.
    did({"undo"});
    EXPECT_THAT(today(), IsEmpty());
}

TEST_F(ProposalCommand, RefusesOne)
{
    const std::string work = propose("Fix the login", 9h, 9h + 36min);
    const CommandRun refused = run({"proposals", "refuse", work.substr(0, 4)});
    EXPECT_EQ(refused.exitStatus, 0) << refused.all();
    EXPECT_THAT(refused.output, HasSubstr("proposed for “Fix the login”"));
    EXPECT_THAT(today(), IsEmpty());
    const QJsonObject all = did({"proposals"});
    EXPECT_EQ(all[u"pendingCount"].toInt(), 0);
    EXPECT_EQ(text(all[u"proposals"].toArray().at(0)[u"status"]), "dismissed");
}

TEST_F(ProposalCommand, SaysWhyOneNoLongerFits)
{
    const QJsonObject entry = did({"add", "Write the README 8:00-8:30"})[u"entry"].toObject();
    const std::string change = proposeChange(
        entry, [](ProposedChangeRequest &request) { request.description = "Write the manual"; });
    did({"edit", "last", "Write the tutorial"});
    const CommandRun late = run({"proposals", "apply", change});
    EXPECT_EQ(late.exitStatus, 1);
    EXPECT_THAT(late.errors, AllOf(HasSubstr("The entry has changed since this was proposed."),
                                   HasSubstr("orvane proposals refuse " + change.substr(0, 6))));
    EXPECT_EQ(failed(1, {"proposals", "apply", change})[u"status"].toInt(), 409);

    // Nor can what has changed since be taken back, which is not to stand before what can.
    const std::string work = propose("Fix the login", 9h, 9h + 36min);
    did({"proposals", "apply", work});
    onAnotherDevice([&] { did({"edit", "last", "Fix the logout"}); });
    EXPECT_THAT(run({"undo"}).errors, HasSubstr("The entry has changed since this was applied."));
    did({"undo"});
    EXPECT_THAT(today(), ElementsAre("Write the README", "Fix the logout"));

    ASSERT_TRUE(installation.killServer());
    const CommandRun away = run({"--no-start-server", "proposals"});
    EXPECT_EQ(away.exitStatus, 1);
    EXPECT_THAT(away.errors, HasSubstr("kept by the server"));
}

} // namespace
} // namespace orvane
