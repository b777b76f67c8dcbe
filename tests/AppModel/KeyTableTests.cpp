// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/KeyTable.h"

#include "AppModel/WindowChoices.h"
#include "support/Await.h"

#include <QFile>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;

class KeyTableTest : public ::testing::Test {
protected:
    QString path() const { return m_folder.filePath(QStringLiteral("window.json")); }
    std::unique_ptr<WindowChoices> choices() const
    {
        return std::make_unique<WindowChoices>(path().toStdString());
    }
    void write(const QByteArray &text) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    QTemporaryDir m_folder;
};

TEST_F(KeyTableTest, ComesWithKeysThatNobodyElseHas)
{
    const auto chosen = choices();
    const KeyTable table(*chosen);
    QSet<QString> names;
    for (const KeyTable::Entry &entry : KeyTable::entries()) {
        EXPECT_EQ(&entry - KeyTable::entries().data(), entry.command) << entry.id;
        names.insert(QString::fromLatin1(entry.id));
        for (const QString &chord : table.keys(entry.command).split(QLatin1Char(' '))) {
            EXPECT_EQ(table.takenBy(entry.command, chord), -1) << entry.id;
            EXPECT_EQ(KeyTable::refusal(entry.command, chord), QString()) << entry.id;
        }
    }
    EXPECT_EQ(names.size(), static_cast<int>(KeyTable::entries().size()));
}

TEST_F(KeyTableTest, KeepsChosenKeysForItsOwnerAlone)
{
    {
        const auto chosen = choices();
        KeyTable table(*chosen);
        table.setKeys(KeyTable::SplitEntry, QStringLiteral("X"));
        EXPECT_EQ(table.entryCommand(QStringLiteral("X")), KeyTable::SplitEntry);
        EXPECT_EQ(table.entryCommand(QStringLiteral("S")), -1);
        chosen->setScheme(WindowChoices::Scheme::Dark);
    }
    EXPECT_EQ(QFile::permissions(path()) & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup),
              QFile::Permissions());
    const auto chosen = choices();
    const KeyTable table(*chosen);
    EXPECT_EQ(table.keys(KeyTable::SplitEntry), QStringLiteral("X"));
    EXPECT_TRUE(table.isChanged(KeyTable::SplitEntry));
    EXPECT_EQ(chosen->scheme(), WindowChoices::Scheme::Dark);
}

TEST_F(KeyTableTest, TakesKeysFromWhoHadThemAndGivesThemBack)
{
    const auto chosen = choices();
    std::shared_ptr<UndoableChange> step;
    QObject::connect(chosen.get(), &WindowChoices::stepMade, chosen.get(),
                     [&](const std::shared_ptr<UndoableChange> &made) { step = made; });
    KeyTable table(*chosen);
    // Meant in every section, so on an entry too.
    EXPECT_EQ(table.takenBy(KeyTable::SplitEntry, QStringLiteral("Ctrl+E")), KeyTable::EditRunning);
    table.setKeys(KeyTable::SplitEntry, QStringLiteral("Ctrl+E"));
    EXPECT_EQ(table.keys(KeyTable::EditRunning), QString());
    ASSERT_NE(step, nullptr);
    EXPECT_EQ(step->sentence(), "Changed the keys of “Split…”");

    EXPECT_EQ(await(step->undo()).ending, UndoableChange::Ending::done);
    EXPECT_EQ(table.keys(KeyTable::EditRunning), QStringLiteral("Ctrl+E"));
    EXPECT_EQ(table.keys(KeyTable::SplitEntry), QStringLiteral("S"));
    EXPECT_EQ(await(step->redo()).ending, UndoableChange::Ending::done);
    EXPECT_EQ(table.keys(KeyTable::SplitEntry), QStringLiteral("Ctrl+E"));
    // Something else since then is not thrown away.
    const auto first = step;
    table.setKeys(KeyTable::Undo, QStringLiteral("Ctrl+U"));
    EXPECT_EQ(await(first->undo()).ending, UndoableChange::Ending::changedSince);
    EXPECT_EQ(table.keys(KeyTable::Undo), QStringLiteral("Ctrl+U"));
    table.restoreAll();
    EXPECT_EQ(table.keys(KeyTable::Undo), QStringLiteral("Ctrl+Z"));
    EXPECT_FALSE(table.isChanged(KeyTable::EditRunning));
}

TEST_F(KeyTableTest, RefusesKeysThatTypeText)
{
    EXPECT_NE(KeyTable::refusal(KeyTable::Undo, QStringLiteral("U")), QString());
    EXPECT_NE(KeyTable::refusal(KeyTable::Undo, QStringLiteral("Shift+U")), QString());
    EXPECT_NE(KeyTable::refusal(KeyTable::SplitEntry, QStringLiteral("Ctrl+V")), QString());
    EXPECT_NE(KeyTable::refusal(KeyTable::SplitEntry, QStringLiteral("Down")), QString());
    EXPECT_EQ(KeyTable::refusal(KeyTable::Undo, QStringLiteral("F5")), QString());
    EXPECT_EQ(KeyTable::refusal(KeyTable::SplitEntry, QStringLiteral("U")), QString());
}

TEST_F(KeyTableTest, TakesATornOrForeignFileForNoChoice)
{
    for (const char *text :
         {"", "{\"keys\":{\"undo\":", "[]", "{\"keys\":{\"undo\":7}}", "{\"scheme\":\"pink\"}"}) {
        write(text);
        const auto chosen = choices();
        const KeyTable table(*chosen);
        EXPECT_EQ(chosen->values(), WindowChoices::Values()) << text;
        EXPECT_EQ(table.keys(KeyTable::Undo), QStringLiteral("Ctrl+Z")) << text;
    }
    // What a later version adds is no reason to forget the rest.
    write(R"({"scheme":"dark","keys":{"fly":"F9","undo":""},"later":[1]})");
    const auto chosen = choices();
    const KeyTable table(*chosen);
    EXPECT_EQ(chosen->scheme(), WindowChoices::Scheme::Dark);
    EXPECT_EQ(table.keys(KeyTable::Undo), QString());
}

} // namespace
} // namespace orvane
