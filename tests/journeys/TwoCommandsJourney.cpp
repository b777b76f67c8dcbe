// SPDX-License-Identifier: GPL-3.0-or-later
// Two commands at once on one store: neither makes up a conflict, and neither overwrites the other in
// silence.
#include "support/CommandRun.h"

#include <QProcess>
#include <algorithm>
#include <gtest/gtest.h>

namespace orvane {
namespace {

/// Two commands at once, as from two terminals.
class TwoCommands : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_EQ(folder.json({"status"}).exitStatus, 0); }

    void runBoth(const Arguments &one, const Arguments &other)
    {
        std::vector<std::unique_ptr<QProcess>> processes;
        processes.push_back(folder.start(one));
        processes.push_back(folder.start(other));
        for (const auto &process : processes) {
            ASSERT_TRUE(process->waitForFinished(60'000));
            EXPECT_EQ(process->exitCode(), 0) << process->readAllStandardError().toStdString();
        }
    }
    void expectSettled()
    {
        const QJsonObject queue = folder.json({"status"}).object()[QLatin1String("outbox")].toObject();
        EXPECT_EQ(queue[QLatin1String("pending")].toInt(), 0);
        EXPECT_EQ(queue[QLatin1String("conflicts")].toInt(), 0);
    }

    TestInstallation folder;
};

TEST_F(TwoCommands, StartAndStopAtOnceWithoutAConflict)
{
    for (int round = 0; round < 4; ++round) {
        ASSERT_EQ(folder.run({"start", "before"}).exitStatus, 0);
        runBoth({"start", "a"}, {"start", "b"});
        expectSettled();
        ASSERT_EQ(folder.run({"stop"}).exitStatus, 0);
        ASSERT_EQ(folder.run({"start", "once more"}).exitStatus, 0);
        std::vector<std::unique_ptr<QProcess>> stops;
        stops.push_back(folder.start({"stop"}));
        stops.push_back(folder.start({"stop"}));
        for (const auto &stop : stops)
            ASSERT_TRUE(stop->waitForFinished(60'000)); // the later one may find nothing running
        expectSettled();
    }
}

TEST_F(TwoCommands, EditsOfOneEntryBothStay)
{
    for (int round = 0; round < 4; ++round) {
        const CommandRun added = folder.json({"add", "untouched 9:00-9:30"});
        const std::string id =
            added.object()[QLatin1String("entry")][QLatin1String("id")].toString().toStdString();
        runBoth({"edit", id, "--description", "words"}, {"edit", id, "--billable"});
        expectSettled();
        const QJsonArray days = folder.json({"list"}).object()[QLatin1String("days")].toArray();
        const QJsonArray entries = days.first().toObject()[QLatin1String("entries")].toArray();
        const auto edited = std::ranges::find_if(entries, [&](const QJsonValue &entry) {
            return entry[QLatin1String("id")].toString().toStdString() == id;
        });
        ASSERT_NE(edited, entries.end());
        EXPECT_EQ((*edited)[QLatin1String("description")].toString(), QLatin1String("words"));
        EXPECT_TRUE((*edited)[QLatin1String("isBillable")].toBool());
    }
}

} // namespace
} // namespace orvane
