// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"
#include "Screens/Timer/TimerModel.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::eventually;

/// The application without its windows.
struct Desk {
    explicit Desk(const TestInstallation &installation, bool startsServer = true)
        : app({.folder = installation.folder(),
               .startsServer = startsServer,
               .serverProgram = builtProgram("orvane-server")})
        , timer(app)
    {
        app.open();
    }
    ~Desk() { await(app.close()); }

    bool opens()
    {
        return eventually([this] { return app.phase() != AppModel::Phase::Opening; }) &&
               app.phase() == AppModel::Phase::Open;
    }
    bool settles()
    {
        return eventually([this] { return app.sync()->kind() == SyncStatus::Kind::Saved; });
    }
    void type(const char *sentence)
    {
        timer.field()->setText(QString::fromUtf8(sentence));
        timer.field()->submit();
    }
    QString idOf(const char *description) const
    {
        for (const TimeEntryResponse &entry : app.tracker()->entries()) {
            if (entry.description == description)
                return QString::fromStdString(entry.id);
        }
        return {};
    }
    bool runs(const char *description) const { return timer.description() == QString::fromUtf8(description); }

    AppModel app;
    TimerModel timer;
};

TEST(TimerModel, OpensOnThisComputerAndRecordsWhatIsTyped)
{
    const TestInstallation installation;
    Desk desk(installation);
    ASSERT_TRUE(desk.opens()) << desk.app.problem().toStdString();
    ASSERT_TRUE(eventually([&] { return desk.timer.isEmpty(); }));
    EXPECT_EQ(desk.app.placeName(), QStringLiteral("This Computer"));

    desk.type("Write the report");
    ASSERT_TRUE(eventually([&] { return desk.runs("Write the report"); }));
    EXPECT_EQ(desk.timer.field()->text(), QString());
    desk.timer.stop();
    ASSERT_TRUE(eventually([&] { return !desk.timer.isRunning(); }));
    ASSERT_TRUE(desk.settles());
    const QJsonObject status = installation.json({"status"}).object();
    const QJsonArray entries = status[QStringLiteral("today")][QStringLiteral("entries")].toArray();
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0][QStringLiteral("description")].toString(), QStringLiteral("Write the report"));
}

TEST(TimerModel, ShowsWhatIsKnownWithoutTheServerAndSendsLater)
{
    const TestInstallation installation;
    ASSERT_EQ(installation.run({"start", "Known here"}).exitStatus, 0);
    ASSERT_TRUE(installation.killServer());
    {
        Desk desk(installation, false);
        ASSERT_TRUE(desk.opens()) << desk.app.problem().toStdString();
        ASSERT_TRUE(eventually([&] { return desk.runs("Known here"); }));
        ASSERT_TRUE(eventually([&] { return desk.app.sync()->kind() == SyncStatus::Kind::Offline; }));
        desk.type("Begun while away");
        ASSERT_TRUE(eventually([&] { return desk.runs("Begun while away"); }));
        EXPECT_GT(desk.app.sync()->waiting(), 0);
    }
    Desk desk(installation);
    ASSERT_TRUE(desk.opens());
    EXPECT_TRUE(desk.settles());
    EXPECT_TRUE(desk.runs("Begun while away"));
    EXPECT_EQ(installation.json({"list"}).all().find("waiting"), std::string::npos);
}

TEST(TimerModel, ShowsWhatACommandBesideItChanges)
{
    const TestInstallation installation;
    Desk desk(installation);
    ASSERT_TRUE(desk.opens() && desk.settles());
    ASSERT_EQ(installation.run({"start", "From a terminal"}).exitStatus, 0);
    EXPECT_TRUE(eventually([&] { return desk.runs("From a terminal"); }));
    ASSERT_TRUE(installation.killServer());
    ASSERT_EQ(installation.run({"--no-start-server", "start", "With the server away"}).exitStatus, 0);
    EXPECT_TRUE(eventually([&] { return desk.runs("With the server away"); }));
}

TEST(TimerModel, UndoesAndDoesAgain)
{
    const TestInstallation installation;
    Desk desk(installation);
    ASSERT_TRUE(desk.opens() && desk.settles());
    desk.type("Stand-up 9:00-9:30");
    ASSERT_TRUE(eventually([&] { return !desk.idOf("Stand-up").isEmpty(); }));
    desk.timer.remove(desk.idOf("Stand-up"));
    ASSERT_TRUE(eventually([&] { return desk.idOf("Stand-up").isEmpty(); }));
    EXPECT_EQ(desk.app.notices()->text(), QStringLiteral("Deleted “Stand-up”"));
    desk.app.undo();
    EXPECT_TRUE(eventually([&] { return !desk.idOf("Stand-up").isEmpty(); }));
    desk.app.redo();
    EXPECT_TRUE(eventually([&] { return desk.idOf("Stand-up").isEmpty(); }));
}

TEST(TimerModel, EditsOnTopOfWhatWasChangedElsewhere)
{
    const TestInstallation installation;
    Desk desk(installation);
    ASSERT_TRUE(desk.opens() && desk.settles());
    desk.type("Stand-up 9:00-9:30");
    ASSERT_TRUE(eventually([&] { return !desk.idOf("Stand-up").isEmpty(); }) && desk.settles());
    EntryEditor &editor = *desk.timer.editor();
    ASSERT_TRUE(editor.open(desk.idOf("Stand-up")));
    ASSERT_EQ(installation.run({"edit", "last", "--billable"}).exitStatus, 0);
    const auto entry = [&] { return desk.app.tracker()->entries().front(); };
    ASSERT_TRUE(eventually([&] { return entry().isBillable; }));

    editor.setProperty("start", QStringLiteral("9.75"));
    editor.save();
    EXPECT_EQ(editor.wrongField(), EntryEditor::Field::Start);
    EXPECT_FALSE(editor.entryId().isEmpty());
    editor.setProperty("start", QStringLiteral("8:45"));
    editor.nudge(EntryEditor::Field::Stop, 15);
    editor.save();
    EXPECT_TRUE(editor.entryId().isEmpty());
    EXPECT_TRUE(eventually([&] { return *entry().stop - entry().start == std::chrono::minutes{60}; }));
    EXPECT_TRUE(entry().isBillable);
}

TEST(TimerModel, KeepsWhatIsHalfTyped)
{
    const TestInstallation installation;
    {
        Desk desk(installation);
        ASSERT_TRUE(desk.opens());
        desk.type("Stand-up 9:00-9:30");
        ASSERT_TRUE(eventually([&] { return !desk.idOf("Stand-up").isEmpty(); }) && desk.settles());
        desk.timer.field()->setText(QStringLiteral("Half a sen"));
        ASSERT_TRUE(desk.timer.editor()->open(desk.idOf("Stand-up")));
        desk.timer.editor()->setProperty("description", QStringLiteral("Stand-up and pl"));
    }
    Desk desk(installation);
    ASSERT_TRUE(desk.opens());
    EXPECT_EQ(desk.timer.field()->text(), QStringLiteral("Half a sen"));
    EntryEditor &editor = *desk.timer.editor();
    ASSERT_TRUE(eventually([&] { return !editor.entryId().isEmpty(); }));
    EXPECT_EQ(editor.property("description").toString(), QStringLiteral("Stand-up and pl"));
    editor.save();
    EXPECT_TRUE(eventually([&] { return !desk.idOf("Stand-up and pl").isEmpty(); }));
    EXPECT_EQ(desk.app.draft("editor"), QString());
}

TEST(TimerModel, SaysBeforeReturnWhatWillBe)
{
    const TestInstallation installation;
    Desk desk(installation);
    ASSERT_TRUE(desk.opens() && desk.settles());
    EntryField &field = *desk.timer.field();
    field.setText(QStringLiteral("Review @nowhere since 9:40"));
    ASSERT_EQ(field.notes().size(), 1);
    EXPECT_TRUE(field.notes().front().contains(QStringLiteral("“@nowhere”")));
    EXPECT_EQ(field.timeRanges().size(), 1);
    field.setText(QStringLiteral("Review 9:00-30:00"));
    EXPECT_FALSE(field.notes().isEmpty());
    field.setText(QStringLiteral("Review"));
    EXPECT_TRUE(field.notes().isEmpty());
    EXPECT_EQ(field.action(), QStringLiteral("Start"));
}

TimeEntryResponse entryAt(int day, int hour, int minutes)
{
    TimeEntryResponse entry;
    entry.id = std::to_string(day) + ":" + std::to_string(hour);
    entry.start = UserTime::utc().date(*DayKey::make(2026, 11, day), hour, 0);
    entry.stop = entry.start + std::chrono::minutes{minutes};
    return entry;
}

TEST(TimerRows, FoldsWhatIsOlderThanYesterday)
{
    TimeEntryResponse running = entryAt(20, 14, 0);
    running.stop.reset();
    TimeEntryResponse divided = entryAt(19, 9, 60);
    divided.shares.resize(2);
    const auto rows = TimerRows::of({running, entryAt(20, 9, 60), divided, entryAt(17, 9, 60)}, {},
                                    UserTime::utc(), *DayKey::make(2026, 11, 20));
    using Kind = TimerRow::Kind;
    std::vector<Kind> kinds;
    for (const TimerRow &row : rows.rows)
        kinds.push_back(row.kind);
    // What runs stands above the list, but its day counts it.
    EXPECT_EQ(kinds, (std::vector{Kind::day, Kind::entry, Kind::day, Kind::entry, Kind::share, Kind::share,
                                  Kind::folded}));
    EXPECT_EQ(rows.rows.front().count, 2U);
}

TEST(TimerRows, OffersToTrimOnlyWhatCountsTwice)
{
    const Instant now = entryAt(20, 18, 0).start;
    const auto always = [](const auto &, const auto &) { return true; };
    using std::chrono::minutes;
    // The earlier one ends where the later begins.
    const std::vector ends{entryAt(20, 11, 90), entryAt(20, 10, 70)};
    const auto trimmed = trimOffers(ends, now, always);
    ASSERT_EQ(trimmed.size(), 1U);
    EXPECT_EQ(trimmed.at(1).trimmed(ends[1]).stop, ends[0].start);
    EXPECT_EQ(trimmed.at(1).to - trimmed.at(1).from, minutes{10});
    // Of two that begin together the longer begins later.
    const std::vector begins{entryAt(20, 9, 60), entryAt(20, 9, 30)};
    const TrimOffer longer = trimOffers(begins, now, always).at(1);
    EXPECT_EQ(longer.entry, 0U);
    EXPECT_EQ(longer.trimmed(begins[0]).start, *begins[1].stop);
    // Within another one, at the same times, by seconds, or forbidden: none.
    EXPECT_TRUE(trimOffers({entryAt(20, 10, 30), entryAt(20, 9, 180)}, now, always).empty());
    EXPECT_TRUE(trimOffers({entryAt(20, 9, 60), entryAt(20, 9, 60)}, now, always).empty());
    EXPECT_TRUE(trimOffers({entryAt(20, 10, 60), entryAt(20, 9, 60)}, now, always).empty());
    EXPECT_TRUE(trimOffers(ends, now, [](const auto &, const auto &) { return false; }).empty());
    // It stands below the earlier one, and below its parts.
    std::vector<TimeEntryResponse> divided = ends;
    divided[1].shares.resize(2);
    auto rows = TimerRows::of(divided, {}, UserTime::utc(), *DayKey::make(2026, 11, 20));
    rows.addOffers(trimmed);
    EXPECT_EQ(rows.rows.size(), 6U);
    EXPECT_EQ(rows.rows.back().kind, TimerRow::Kind::offer);
}

TEST(TimerRows, FindsWhatOverlapsAMinuteOrMore)
{
    const Instant now = entryAt(20, 18, 0).start;
    // From 9 to 12, with 10 to 10:30 in it; 12 to 13 only follows.
    const std::vector entries{entryAt(20, 12, 60), entryAt(20, 10, 30), entryAt(20, 9, 180)};
    EXPECT_EQ(overlapping(entries, now), (std::set<std::size_t>{1, 2}));
}

} // namespace
} // namespace orvane
