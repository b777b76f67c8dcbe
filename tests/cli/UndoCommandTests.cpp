// SPDX-License-Identifier: GPL-3.0-or-later
// Slips: what they cannot destroy, and how what was done is taken back.
#include "CommandFixture.h"

namespace orvane {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Slips : public Command {
protected:
    Slips() { setNow("2026-03-04T09:00:00Z"); }

    CommandRun run(Arguments arguments, const std::string &input = {}) const
    {
        arguments.insert(arguments.begin(), {"--zone", "UTC"});
        return installation.run(arguments, input);
    }
    QJsonObject did(Arguments arguments) const
    {
        arguments.insert(arguments.begin(), {"--zone", "UTC"});
        return done(arguments);
    }
    /// Of today, in order.
    Names today() const
    {
        Names names;
        for (const QJsonValue &entry : done({"--zone", "UTC", "status"})[u"today"][u"entries"].toArray())
            names.push_back(text(entry[u"description"]) + " " + text(entry[u"start"]).substr(11, 5) + "-" +
                            text(entry[u"stop"])
                                .substr(0, 16)
                                .substr(std::min<std::size_t>(11, text(entry[u"stop"]).size())));
        return names;
    }
};

TEST_F(Slips, AreTakenBackOneAfterTheOther)
{
    did({"start", "First", "--start", "8:00"});
    const QJsonObject second = did({"start", "Second", "--start", "8:30"});
    did({"stop", "Second, described", "--at", "8:45"});
    did({"edit", "last", "Another"});
    EXPECT_EQ(today(), (Names{"First 08:00-08:30", "Another 08:30-08:45"}));
    did({"undo"});
    did({"undo"});
    EXPECT_EQ(today(), (Names{"First 08:00-08:30", "Second 08:30-"})) << "it runs again";
    // Without the server, too; a start that ended another timer is one action.
    ASSERT_TRUE(installation.killServer());
    EXPECT_EQ(text(did({"--no-start-server", "undo"})[u"outcome"]), "waiting");
    EXPECT_EQ(today(), Names{"First 08:00-"});
    did({"undo"});
    EXPECT_THAT(today(), IsEmpty());
    const CommandRun none = run({"undo"});
    EXPECT_EQ(none.exitStatus, 1);
    EXPECT_THAT(none.errors, HasSubstr("nothing to take back"));
}

TEST_F(Slips, DeletedEntriesComeBackAndEarlierChangesFollowThem)
{
    const std::string kept =
        id(did({"add", "Kept", "--start", "7:00", "--stop", "7:30"})[u"entry"].toObject());
    did({"edit", kept, "Renamed"});
    const std::string other = id(did({"add", "Other 7:30-8:00"})[u"entry"].toObject());
    const CommandRun gone = run({"delete", kept, other});
    EXPECT_EQ(gone.exitStatus, 0) << gone.all();
    EXPECT_THAT(gone.output, HasSubstr("orvane add --description Renamed --start \"2026-03-04 07:00\" --stop "
                                       "\"2026-03-04 07:30\""));
    EXPECT_THAT(today(), IsEmpty());
    did({"undo"});
    EXPECT_EQ(today(), (Names{"Renamed 07:00-07:30", "Other 07:30-08:00"}));
    did({"undo"}); // the making of the other
    did({"undo"});
    EXPECT_EQ(today(), Names{"Kept 07:00-07:30"}) << "though its identifier is another";
    EXPECT_THAT(run({"delete", kept}).errors, HasSubstr("no entry")) << "the old one is gone for good";
    // What was changed elsewhere meanwhile is not overwritten, and does not stand in the way for ever.
    did({"edit", "last", "Mine"});
    onAnotherDevice([&] { did({"edit", "last", "Theirs"}); });
    EXPECT_THAT(run({"undo"}).errors, HasSubstr("changed since then"));
    EXPECT_EQ(today(), Names{"Theirs 07:00-07:30"});
}

TEST_F(Slips, ChangeNothing)
{
    did({"projects", "add", "Website"});
    const std::string entry = id(did({"add", "Kept 8:00-8:30"})[u"entry"].toObject());
    for (const Arguments &slip : {Arguments{"edit", entry, "@wbe"},
                                  {"edit", entry, "#no 9:30"},
                                  {"start", "Review 9-10:30 @wbe"},
                                  {"add", "Review 45m #2"},
                                  {"start", "Shift 10:00-3:00"},
                                  {"add", "x", "--start", "10:00", "--stop", "9:00"},
                                  {"edit", entry, "--stop", "8:00"}}) {
        const CommandRun refused = run(slip);
        EXPECT_NE(refused.exitStatus, 0) << slip[0] << " " << slip[1] << refused.all();
        EXPECT_THAT(refused.output, IsEmpty());
    }
    EXPECT_THAT(run({"edit", entry, "@wbe"}).errors,
                AllOf(HasSubstr("orvane projects add wbe"), HasSubstr("--literally")));
    EXPECT_THAT(run({"start", "Review 9-10:30 @wbe"}).errors,
                AllOf(HasSubstr("\"9-10:30\""), HasSubstr("\"@wbe\"")));
    EXPECT_EQ(today(), Names{"Kept 08:00-08:30"});
    EXPECT_EQ(text(did({"edit", entry, "@wbe", "--literally"})[u"entry"][u"description"]), "@wbe");
}

TEST_F(Slips, AreNotedOrAskedAbout)
{
    did({"add", "First 7:00-8:00"});
    EXPECT_THAT(run({"add", "Second 7:30-9:30"}).errors,
                AllOf(HasSubstr("lies in the future"), HasSubstr("overlaps \"First\" (07:00 – 08:00)")));
    const CommandRun asked = run({"edit", "last", "--stop", "2026-03-06 9:00"});
    EXPECT_EQ(asked.exitStatus, 2) << asked.all();
    EXPECT_THAT(asked.errors, AllOf(HasSubstr("longer than a day"), HasSubstr("--yes")));
    EXPECT_EQ(run({"edit", "last", "--stop", "2026-03-06 9:00", "--yes"}).exitStatus, 0);
    const CommandRun yesterday = run({"add", "Late", "--start", "yesterday 23:30", "--stop", "0:30"});
    EXPECT_THAT(yesterday.output, HasSubstr("1:00:00")) << yesterday.all();
    EXPECT_THAT(run({"edit", "last", "--start", "3.3. 23:00"}).errors, HasSubstr("longer than a day"));
}

TEST_F(Slips, ManyLinesAreCheckedBeforeTheFirstIsRecorded)
{
    const CommandRun wrong = run({"add", "-"}, "Good 7:00-7:30\nno time here\n\nBad 8-9:00 @wbe\n");
    EXPECT_NE(wrong.exitStatus, 0);
    EXPECT_THAT(wrong.errors,
                AllOf(HasSubstr("Line 2: "), HasSubstr("Line 4: "), HasSubstr("Nothing was recorded")));
    EXPECT_THAT(today(), IsEmpty());
    const CommandRun good = run({"--json", "add", "-", "--billable"}, "One 7:00-7:30\r\nTwo 7:30-8:00");
    EXPECT_EQ(good.exitStatus, 0) << good.all();
    EXPECT_EQ(good.array().size(), 2);
    EXPECT_EQ(today(), (Names{"One 07:00-07:30", "Two 07:30-08:00"}));
    did({"undo"});
    EXPECT_THAT(today(), IsEmpty()) << "they are one action";
}

TEST_F(Slips, ATimerGoesOnWithAnEntryOfOnesChoice)
{
    did({"tags", "add", "review"});
    const std::string first = id(did({"add", "First #review 7:00-7:30"})[u"entry"].toObject());
    did({"add", "Second 7:30-8:00"});
    const QJsonObject again = did({"continue", first.substr(0, 6), "once more"})[u"entry"].toObject();
    EXPECT_EQ(text(again[u"description"]), "once more");
    EXPECT_EQ(again[u"tagIds"].toArray().size(), 1);
    EXPECT_EQ(run({"stop", "Until 9:30"}).exitStatus, 2) << "a time goes to --at";
    // Each process begins at this moment anew; what follows a start is to come after it.
    setNow("2026-03-04T09:10:00Z");
    did({"stop"});
    setNow("2026-03-04T09:20:00Z");
    EXPECT_EQ(text(did({"continue"})[u"entry"][u"description"]), "once more") << "what ended last";
}

} // namespace
} // namespace orvane
