// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"
#include "Screens/Settings/SettingsModel.h"
#include "support/Await.h"
#include "support/CommandRun.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;
using testing::eventually;

/// The section of settings over the real server.
class SettingsModelTest : public ::testing::Test {
protected:
    SettingsModelTest()
        : m_app({.folder = m_installation.folder(), .serverProgram = builtProgram("orvane-server")})
        , m_settings(m_app)
    {
        m_app.open();
    }
    ~SettingsModelTest() override { await(m_app.close()); }

    void SetUp() override
    {
        ASSERT_TRUE(eventually([this] {
            return m_app.tracker() != nullptr && m_app.tracker()->state() == LoadState::loaded;
        })) << m_app.problem().toStdString();
    }
    bool undoes(const char *what)
    {
        if (!eventually([&] { return m_app.undoText().startsWith(QString::fromUtf8(what)); }))
            return false;
        m_app.undo();
        return eventually([this] { return m_app.notices()->text().startsWith(QLatin1String("Undone")); });
    }
    const PreferencesResponse &known() const { return m_app.account()->me().preferences; }
    static QString chosen(const QVariantList &choices)
    {
        for (const QVariant &choice : choices) {
            if (choice.toMap()[QStringLiteral("isChosen")].toBool())
                return choice.toMap()[QStringLiteral("value")].toString();
        }
        return {};
    }

    TestInstallation m_installation;
    AppModel m_app;
    SettingsModel m_settings;
};

TEST_F(SettingsModelTest, HoldsAChangeAtOnceAndTakesItBack)
{
    TimeSettings &time = *m_settings.time();
    const auto before = known();
    const QString other = before.timeFormat == "12h" ? QStringLiteral("24h") : QStringLiteral("12h");
    time.setClock(other);
    EXPECT_EQ(chosen(time.clocks()), other);
    ASSERT_TRUE(eventually([&] { return known().timeFormat == other.toStdString(); }));
    EXPECT_EQ(m_app.tracker()->time().hour12(), other == QStringLiteral("12h"));
    ASSERT_TRUE(undoes("Changed your settings")) << m_app.notices()->text().toStdString();
    EXPECT_EQ(known(), before);
    EXPECT_EQ(chosen(time.clocks()).toStdString(), before.timeFormat);
}

TEST_F(SettingsModelTest, SendsSeveralChangesOneAfterTheOther)
{
    TimeSettings &time = *m_settings.time();
    time.setWeekStart(6);
    time.setDate(QStringLiteral("yyyy-MM-dd"));
    time.setDuration(QStringLiteral("decimal"));
    time.setZone(QStringLiteral("Asia/Kathmandu"));
    EXPECT_EQ(time.weekStart(), 6);
    EXPECT_EQ(time.zoneOffset(), QStringLiteral("UTC+05:45"));
    EXPECT_TRUE(time.elapsed().endsWith(QLatin1String("h")));
    ASSERT_TRUE(eventually([&] { return m_app.account()->me().timeZone == "Asia/Kathmandu"; }));
    EXPECT_EQ(known().weekStart, 0);
    EXPECT_EQ(known().dateFormat, "yyyy-MM-dd");
    EXPECT_EQ(known().durationFormat, "decimal");
    EXPECT_EQ(m_app.tracker()->time().timeZone(), "Asia/Kathmandu");
    ASSERT_TRUE(eventually([&] { return !m_settings.isSending(); }));
    // The last one alone.
    ASSERT_TRUE(undoes("Changed your settings"));
    EXPECT_NE(m_app.account()->me().timeZone, "Asia/Kathmandu");
    EXPECT_EQ(known().durationFormat, "decimal");
}

TEST(SettingsModel, SaysWhyAChangeDoesNotHoldWithoutTheServer)
{
    const TestInstallation installation;
    ASSERT_EQ(installation.run({"settings", "set", "duration-format", "hms"}).exitStatus, 0);
    AppModel app({.folder = installation.folder(), .startsServer = false});
    SettingsModel settings(app);
    app.open();
    ASSERT_TRUE(
        eventually([&] { return app.tracker() != nullptr && app.tracker()->state() == LoadState::loaded; }));
    ASSERT_TRUE(installation.killServer());
    settings.time()->setDuration(QStringLiteral("hm"));
    EXPECT_TRUE(eventually([&] { return !settings.problem().isEmpty(); }));
    EXPECT_EQ(app.account()->me().preferences.durationFormat, "hms");
    EXPECT_TRUE(settings.time()->elapsed() == QStringLiteral("1:24:36"));
    EXPECT_TRUE(eventually([&] { return settings.isAway(); }));
    EXPECT_FALSE(settings.rules()->mayEdit());
    EXPECT_FALSE(settings.rules()->note().isEmpty());
    await(app.close());
}

TEST_F(SettingsModelTest, ReadsWhatIsTypedOfTheWorkspace)
{
    WorkspaceRules &rules = *m_settings.rules();
    ASSERT_TRUE(rules.mayEdit()) << rules.note().toStdString();
    EXPECT_NE(rules.setText(WorkspaceRules::Name, QStringLiteral("  ")), QString());
    EXPECT_NE(rules.setText(WorkspaceRules::Currency, QStringLiteral("euros")), QString());
    EXPECT_NE(rules.setText(WorkspaceRules::Rate, QStringLiteral("much")), QString());
    EXPECT_NE(rules.setText(WorkspaceRules::LockedBefore, QStringLiteral("2026-02-30")), QString());

    EXPECT_EQ(rules.setText(WorkspaceRules::Currency, QStringLiteral("chf")), QString());
    EXPECT_EQ(rules.setText(WorkspaceRules::Rate, QStringLiteral("12,5")), QString());
    EXPECT_EQ(rules.setText(WorkspaceRules::LockedBefore, QStringLiteral("2020-03-01")), QString());
    rules.setRule(WorkspaceRules::RequireProject, true);
    EXPECT_TRUE(rules.requireProject());
    const auto settings = [this] { return m_app.tracker()->settings().value(); };
    ASSERT_TRUE(eventually([&] { return settings().requireProject; }));
    EXPECT_EQ(settings().currency, "CHF");
    EXPECT_EQ(settings().defaultHourlyRate, 12.5);
    EXPECT_EQ(rules.lockedBefore(), QStringLiteral("2020-03-01"));
    EXPECT_FALSE(settings().requireTask);
    EXPECT_EQ(rules.setText(WorkspaceRules::LockedBefore, QString()), QString());
    ASSERT_TRUE(eventually([&] { return !settings().lockedBefore; }));
}

TEST_F(SettingsModelTest, AsksBeforeKeysGoToAnotherCommand)
{
    ShortcutRows &rows = *m_settings.shortcuts();
    KeyTable &table = *m_app.keys();
    rows.record(KeyTable::SplitEntry);
    rows.press(QStringLiteral("Ctrl+E"));
    EXPECT_EQ(rows.taker(), KeyTable::EditRunning);
    EXPECT_EQ(table.keys(KeyTable::SplitEntry), QStringLiteral("S"));
    rows.keep();
    EXPECT_EQ(table.keys(KeyTable::EditRunning), QStringLiteral("Ctrl+E"));

    rows.record(KeyTable::SplitEntry);
    rows.press(QStringLiteral("Ctrl+V"));
    EXPECT_NE(rows.refusal(), QString());
    rows.useHere();
    EXPECT_EQ(table.keys(KeyTable::SplitEntry), QStringLiteral("S"));
    // Still recording; free keys are taken at once.
    rows.press(QStringLiteral("X"));
    EXPECT_EQ(rows.recorded(), -1);
    EXPECT_EQ(table.keys(KeyTable::SplitEntry), QStringLiteral("X"));

    // Its own keys may belong to somebody else meanwhile.
    rows.record(KeyTable::ContinueEntry);
    rows.press(QStringLiteral("S"));
    rows.restore(KeyTable::SplitEntry);
    EXPECT_EQ(rows.taker(), KeyTable::ContinueEntry);
    rows.useHere();
    EXPECT_EQ(table.keys(KeyTable::SplitEntry), QStringLiteral("S"));
    EXPECT_EQ(table.keys(KeyTable::ContinueEntry), QString());
    ASSERT_TRUE(undoes("Changed the keys of “Split…”"));
    EXPECT_EQ(table.keys(KeyTable::ContinueEntry), QStringLiteral("S"));
}

TEST_F(SettingsModelTest, FindsCommandsByNameAndByKeys)
{
    ShortcutRows &rows = *m_settings.shortcuts();
    const auto commands = [&rows] {
        std::vector<int> found;
        for (int row = 0; row < rows.rowCount(); ++row) {
            if (!rows.index(row).data(ShortcutRows::isHeadRole).toBool())
                found.push_back(rows.index(row).data(ShortcutRows::commandRole).toInt());
        }
        return found;
    };
    EXPECT_EQ(commands().size(), KeyTable::entries().size());
    rows.setQuery(QStringLiteral("dupl"));
    EXPECT_EQ(commands(), std::vector<int>{KeyTable::DuplicateEntry});
    rows.setQuery(QStringLiteral("ctrl+shift+z"));
    EXPECT_EQ(commands(), std::vector<int>{KeyTable::Redo});
}

} // namespace
} // namespace orvane
