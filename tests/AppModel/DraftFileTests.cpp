// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/DraftFile.h"

#include "support/Await.h"
#include "support/ManualRetryTimer.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvane {
namespace {

using namespace orvane::testing;
using std::chrono::milliseconds;

TEST(Drafts, HoldsTheLastTextOfEachPlaceOfEachAccount)
{
    Drafts drafts;
    EXPECT_TRUE(drafts.set({"a", "field", "one"}));
    EXPECT_TRUE(drafts.set({"b", "field", "other"}));
    EXPECT_TRUE(drafts.set({"a", "field", "two \"“\u202e\n"}));
    EXPECT_FALSE(drafts.set({"a", "field", "two \"“\u202e\n"})) << "nothing changed";
    EXPECT_FALSE(drafts.set({"a", "panel", ""}));
    EXPECT_EQ(Drafts::read(drafts.written()), drafts);
    EXPECT_EQ(drafts.text("a", "field"), "two \"“\u202e\n");
    EXPECT_TRUE(drafts.forget("a"));
    EXPECT_FALSE(drafts.forget("a"));
    EXPECT_EQ(drafts.text("a", "field"), "");
    EXPECT_EQ(drafts.text("b", "field"), "other");
    EXPECT_TRUE(drafts.set({"b", "field", ""}));
    EXPECT_TRUE(drafts.isEmpty());
}

TEST(Drafts, StaysBoundedAndKeepsTheNewest)
{
    Drafts drafts;
    for (int i = 0; i < 300; ++i)
        drafts.set({"a", "entry:" + std::to_string(i), "text"});
    EXPECT_EQ(drafts.all().size(), Drafts::mostDrafts);
    EXPECT_EQ(drafts.text("a", "entry:99"), "");
    EXPECT_EQ(drafts.text("a", "entry:299"), "text");
    EXPECT_FALSE(drafts.set({"a", std::string(300, 'k'), "text"}));

    std::string umlauts;
    while (umlauts.size() < 2 * Drafts::longestText)
        umlauts += "ü";
    drafts.set({"a", "long", "x" + umlauts});
    EXPECT_EQ(drafts.text("a", "long").size(), Drafts::longestText - 1) << "no half of a character";
    for (int i = 0; i < 100; ++i)
        drafts.set({"a", "long:" + std::to_string(i), umlauts});
    std::size_t bytes = 0;
    for (const Draft &draft : drafts.all())
        bytes += draft.text.size();
    EXPECT_LE(bytes, Drafts::mostText);
    EXPECT_NE(drafts.text("a", "long:99"), "");
    EXPECT_EQ(drafts.text("a", "entry:299"), "");
    EXPECT_EQ(Drafts::read(drafts.written()), drafts);
}

class DraftFileTest : public ::testing::Test {
protected:
    std::unique_ptr<DraftFile> open()
    {
        auto manual = std::make_unique<ManualRetryTimer>();
        timer = manual.get();
        return std::make_unique<DraftFile>(path, std::move(manual));
    }
    QByteArray onDisk() const
    {
        QFile file(QString::fromStdString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    void put(const QByteArray &bytes) const
    {
        QFile file(QString::fromStdString(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QTemporaryDir folder;
    std::string path = DraftFile::pathIn(folder.path().toStdString());
    ManualRetryTimer *timer = nullptr;
};

TEST_F(DraftFileTest, WritesSoonOnceForManyChangesAndNothingWhenNothingChanged)
{
    auto drafts = open();
    drafts->setText("a", "field", QStringLiteral("Fix"));
    drafts->setText("a", "field", QStringLiteral("Fix the sy"));
    EXPECT_EQ(timer->delays, std::vector{DraftFile::writeDelay}) << "not put off by the next key";
    EXPECT_TRUE(onDisk().isEmpty());
    timer->advance(DraftFile::writeDelay);
    ASSERT_TRUE(eventually([&] { return onDisk().contains("Fix the sy"); }));
    struct stat info{};
    ASSERT_EQ(::stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0600U);

    drafts->setText("a", "field", QStringLiteral("Fix the sy"));
    EXPECT_FALSE(timer->isScheduled());
    drafts->setText("a", "panel", QStringLiteral("Lunch"));
    EXPECT_TRUE(timer->isScheduled());
    drafts.reset();
    drafts = open();
    EXPECT_EQ(drafts->text("a", "field"), QStringLiteral("Fix the sy"));
    EXPECT_EQ(drafts->text("a", "panel"), QStringLiteral("Lunch")) << "written at the end";
    EXPECT_EQ(drafts->text("b", "panel"), QString());
}

TEST_F(DraftFileTest, LeavesNothingOfAnAccountThatGoes)
{
    auto drafts = open();
    drafts->setText("gone", "field", QStringLiteral("secret"));
    drafts->setText("stays", "field", QStringLiteral("kept"));
    ASSERT_TRUE(drafts->flush());
    drafts->setText("gone", "panel", QStringLiteral("secret too"));
    ASSERT_TRUE(drafts->forget("gone"));
    EXPECT_FALSE(onDisk().contains("secret"));
    EXPECT_TRUE(onDisk().contains("kept"));
    ASSERT_TRUE(drafts->forget("stays"));
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(path)));
    EXPECT_TRUE(drafts->forget("stays")) << "there is nothing left to do";
}

TEST_F(DraftFileTest, PassesOverWhatIsNoDraftsAndGoesOn)
{
    Drafts sound;
    sound.set({"a", "field", "text"});
    const std::string whole = sound.written();
    for (std::size_t length = 0; length < whole.size() - 2; ++length) {
        put(QByteArray(whole.data(), static_cast<qsizetype>(length)));
        EXPECT_EQ(open()->text("a", "field"), QString()) << length;
    }
    for (const QByteArray &other :
         {QByteArray("\0\xff\xfe", 3), QByteArray("[]"), QByteArray(R"({"drafts":{}})"),
          QByteArray(R"({"drafts":[{"account":1,"key":"field","text":"x"}]})"), QByteArray(100'000, '['),
          QByteArray(DraftFile::largestFile + 1, ' ')}) {
        put(other);
        const auto drafts = open();
        EXPECT_EQ(drafts->text("a", "field"), QString());
        drafts->setText("a", "field", QStringLiteral("new"));
        ASSERT_TRUE(drafts->flush());
        EXPECT_EQ(open()->text("a", "field"), QStringLiteral("new"));
    }
    ASSERT_TRUE(QFile::remove(QString::fromStdString(path)));
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    EXPECT_EQ(open()->text("a", "field"), QString()) << "and does not wait for a pipe's other end";
}

TEST_F(DraftFileTest, SaysWhyItCannotWriteAndTriesAgain)
{
    path = folder.path().toStdString() + "/missing/drafts.json";
    auto drafts = open();
    drafts->setText("a", "field", QStringLiteral("text"));
    timer->advance(DraftFile::writeDelay);
    ASSERT_TRUE(eventually([&] { return !drafts->error().isEmpty(); }));
    EXPECT_FALSE(drafts->flush());
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("missing")));
    drafts->setText("a", "field", QStringLiteral("texts"));
    timer->advance(DraftFile::writeDelay);
    ASSERT_TRUE(eventually([&] { return drafts->error().isEmpty(); }));
    EXPECT_TRUE(onDisk().contains("texts"));
}

// Killed in the middle of a word

constexpr const char *typistVariable = "ORVANE_TEST_TYPIST";
constexpr milliseconds keyInterval{20};

/// What the killed process does: types a letter now and again, and tells after each how long the text is. It
/// does nothing unless the test below starts it.
TEST(DraftTypist, Types)
{
    const QByteArray path = qgetenv(typistVariable);
    if (path.isEmpty())
        GTEST_SKIP() << "started by DraftFileTest";
    DraftFile drafts(path.toStdString());
    QString text;
    QTimer keys;
    QObject::connect(&keys, &QTimer::timeout, [&] {
        text += QLatin1Char('x');
        drafts.setText("a", "field", text);
        std::printf("typed %d\n", static_cast<int>(text.size()));
        std::fflush(stdout);
    });
    keys.start(keyInterval);
    EXPECT_FALSE(eventually([] { return false; })) << "is killed long before";
}

TEST_F(DraftFileTest, LosesAtMostASecondToAKill)
{
    for (const milliseconds life : {milliseconds{1300}, milliseconds{1750}}) {
        QFile::remove(QString::fromStdString(path));
        QProcess typist;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(typistVariable), QString::fromStdString(path));
        environment.remove(QStringLiteral("GTEST_TOTAL_SHARDS"));
        environment.remove(QStringLiteral("GTEST_SHARD_INDEX"));
        typist.setProcessEnvironment(environment);
        typist.start(QCoreApplication::applicationFilePath(),
                     {QStringLiteral("--gtest_filter=DraftTypist.Types")});
        QElapsedTimer clock;
        std::vector<std::pair<qint64, int>> heard;
        const auto listen = [&] {
            while (typist.canReadLine()) {
                const QByteArray line = typist.readLine();
                if (!line.startsWith("typed "))
                    continue;
                if (heard.empty())
                    clock.start();
                heard.emplace_back(clock.elapsed(), line.mid(6).trimmed().toInt());
            }
            return !heard.empty() && clock.elapsed() >= life.count();
        };
        ASSERT_TRUE(eventually(listen)) << typist.readAllStandardError().toStdString();
        typist.kill();
        const qint64 end = clock.elapsed();
        ASSERT_TRUE(typist.waitForFinished());
        int safe = 0;
        for (const auto &[at, length] : heard) {
            if (at <= end - 1000)
                safe = length;
        }
        const qsizetype kept = DraftFile(path).text("a", "field").size();
        EXPECT_GE(kept, safe) << "of " << heard.back().second;
        EXPECT_GT(safe, 0);
    }
}

} // namespace
} // namespace orvane
