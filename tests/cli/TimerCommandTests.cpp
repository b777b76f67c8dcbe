// SPDX-License-Identifier: GPL-3.0-or-later
// When a start and a stop happen, and what to do about a timer that begins only later.
#include "CommandFixture.h"

namespace orvane {
namespace {

using testing::AllOf;
using testing::HasSubstr;

TEST_F(Command, StartsAheadOfTimeOnlyWhenTheDayIsNamed)
{
    setNow("2026-03-04T09:00:00Z");
    const CommandRun refused = installation.json({"--zone", "UTC", "start", "Later", "--start", "17:30"});
    EXPECT_EQ(refused.exitStatus, 1) << refused.all();
    EXPECT_EQ(text(refused.object()[u"outcome"]), "rejected");
    EXPECT_THAT(text(refused.object()[u"message"]),
                AllOf(HasSubstr("still to come"), HasSubstr("--start \"2026-03-04 17:30\"")));
    EXPECT_TRUE(done({"status"})[u"running"].isNull());
    EXPECT_EQ(text(entry({"--zone", "UTC", "start", "Later", "--start", "2026-03-04 17:30"})[u"start"]),
              "2026-03-04T17:30:00.000Z");
}

TEST_F(Command, SaysWhatARefusedTimeIsMeasuredBy)
{
    setNow("2026-03-04T09:30:00Z");
    done({"start", "Writing"});
    setNow("2026-03-04T10:00:00Z");
    EXPECT_THAT(installation.run({"--zone", "UTC", "stop", "--at", "2026-03-04 8:00"}).errors,
                HasSubstr("The end must not be before the start. The timer began at 09:30.\n"));
    EXPECT_THAT(installation
                    .run({"--zone", "UTC", "add", "Far ahead", "--start", "2150-01-01 9:00", "--stop",
                          "2150-01-01 10:00"})
                    .errors,
                HasSubstr("Start: "));
}

TEST_F(Command, NamesTheWaysOutOfATimerThatBeginsLater)
{
    setNow("2026-03-05T10:00:30Z");
    const std::string ahead = id(entry({"start", "By the wrong clock"}));
    // The clock was set back.
    setNow("2026-03-04T09:00:00Z");
    for (const Arguments &command : {Arguments{"start", "Now"},
                                     {"stop"},
                                     {"stop", "--at", "2026-03-04 8:30"},
                                     {"continue"},
                                     {"start", "Earlier", "--start", "8:00"}}) {
        Arguments arguments{"--zone", "UTC"};
        arguments.insert(arguments.end(), command.begin(), command.end());
        const CommandRun run = installation.json(arguments);
        EXPECT_EQ(run.exitStatus, 1) << run.all();
        EXPECT_EQ(text(run.object()[u"outcome"]), "rejected");
        EXPECT_THAT(text(run.object()[u"message"]), AllOf(HasSubstr(" on 2026-03-05. End it"),
                                                          HasSubstr("orvane stop --at \"2026-03-05 10:01\""),
                                                          HasSubstr("orvane delete " + ahead.substr(0, 6))));
    }
    EXPECT_EQ(text(done({"--zone", "UTC", "stop", "--at", "2026-03-05 10:01"})[u"outcome"]), "stopped");
    EXPECT_EQ(text(done({"start", "Now"})[u"outcome"]), "saved") << "the first way leads out";

    setNow("2026-03-03T09:00:00Z");
    const std::string second = id(done({"status"})[u"running"].toObject());
    EXPECT_EQ(text(done({"delete", second.substr(0, 6)})[u"outcome"]), "saved");
    EXPECT_EQ(text(done({"start", "Back then"})[u"outcome"]), "saved") << "and so does the second";
}

TEST_F(Command, SaysWhatAStopNeedsAndTakesIt)
{
    done({"settings", "set", "requireProject", "on"});
    done({"settings", "set", "requireTag", "on"});
    done({"projects", "add", "Website"});
    const CommandRun started = installation.run({"start", "Fix it"});
    EXPECT_THAT(started.errors, HasSubstr("orvane stop \"@project #tag\"")) << "at once";
    EXPECT_THAT(installation.run({"status"}).errors, HasSubstr("orvane stop \"@project #tag\""));
    const CommandRun lacking = installation.json({"stop"});
    EXPECT_EQ(lacking.exitStatus, 1);
    EXPECT_EQ(text(lacking.object()[u"outcome"]), "needsDetails");
    EXPECT_EQ(lacking.object()[u"missing"].toArray(),
              (QJsonArray{QStringLiteral("projectId"), QStringLiteral("tagIds")}));
    // A name that is not there is no missing detail.
    const CommandRun unknown = installation.run({"stop", "@website #newtag"});
    EXPECT_NE(unknown.exitStatus, 0);
    EXPECT_THAT(unknown.errors, HasSubstr("orvane tags add newtag"));
    EXPECT_FALSE(done({"status"})[u"running"].isNull()) << "nothing was sent";
    done({"tags", "add", "newtag"});
    const QJsonObject stopped = done({"stop", "@website #newtag"});
    EXPECT_EQ(text(stopped[u"outcome"]), "stopped");
    EXPECT_EQ(text(stopped[u"entry"][u"names"][u"project"]), "Website");
    EXPECT_EQ(text(stopped[u"entry"][u"description"]), "Fix it");
    EXPECT_EQ(installation.json({"add", "Lunch 12-12:30"}).exitStatus, 1);
}

} // namespace
} // namespace orvane
