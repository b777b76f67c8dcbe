// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/SingleInstance.h"

#include "support/Await.h"

#include <QLocalSocket>
#include <QTemporaryDir>
#include <QTimer>
#include <atomic>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <thread>

namespace orvane {
namespace {

using testing::eventually;
using Wish = SingleInstance::Wish;

/// What another process's start does meanwhile, which blocks until the first has answered.
class OtherStart {
public:
    OtherStart(const QTemporaryDir &folder, Wish wish, const QString &detail = {})
        : m_thread([this, root = folder.path().toStdString(), wish, detail] {
            m_isFirst = SingleInstance(root).takeOrHandOver(wish, detail);
            m_hasEnded = true;
        })
    {
    }
    ~OtherStart() { m_thread.join(); }
    bool handsOver() const
    {
        return eventually([this] { return m_hasEnded.load(); }) && !m_isFirst;
    }
    bool takesOver() const
    {
        return eventually([this] { return m_hasEnded.load(); }) && m_isFirst;
    }

private:
    std::atomic<bool> m_isFirst = false;
    std::atomic<bool> m_hasEnded = false;
    std::thread m_thread;
};

TEST(SingleInstance, HandsASecondStartToTheFirst)
{
    const QTemporaryDir folder;
    auto first = std::make_unique<SingleInstance>(folder.path().toStdString());
    std::vector<Wish> heard;
    QString came;
    QObject::connect(first.get(), &SingleInstance::wished, first.get(),
                     [&](Wish wish, const QString &detail) {
                         heard.push_back(wish);
                         came += detail;
                     });
    ASSERT_TRUE(first->takeOrHandOver(Wish::raise));
    EXPECT_TRUE(OtherStart(folder, Wish::raise).handsOver());
    EXPECT_TRUE(OtherStart(folder, Wish::panel).handsOver());
    const QString address = QStringLiteral("orvane://agents/authorize?client_id=") + QString(3000, u'a');
    EXPECT_TRUE(OtherStart(folder, Wish::agent, address).handsOver());
    EXPECT_EQ(heard, (std::vector{Wish::raise, Wish::panel, Wish::agent}));
    EXPECT_EQ(came, address);

    struct stat status{};
    ASSERT_EQ(::stat((folder.path() + QStringLiteral("/window")).toStdString().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    first.reset();
    EXPECT_TRUE(SingleInstance(folder.path().toStdString()).takeOrHandOver(Wish::raise));
}

TEST(SingleInstance, PassesOverWhatIsNoWish)
{
    const QTemporaryDir folder;
    SingleInstance first(folder.path().toStdString());
    std::vector<Wish> heard;
    QObject::connect(&first, &SingleInstance::wished, &first, [&](Wish wish) { heard.push_back(wish); });
    ASSERT_TRUE(first.takeOrHandOver(Wish::raise));
    for (const QByteArray &noise : {QByteArray(100'000, 'x'), QByteArray("quit\n"), QByteArray("panel \n"),
                                    QByteArray(100, 'p') + "\npanel\n", QByteArray("\0panel\n", 7)}) {
        QLocalSocket stranger;
        stranger.connectToServer(folder.path() + QStringLiteral("/window/socket"));
        stranger.write(noise);
        EXPECT_TRUE(eventually([&] { return stranger.state() == QLocalSocket::UnconnectedState; }));
        EXPECT_NE(stranger.readAll(), "taken\n");
    }
    // Who says nothing does not keep others waiting.
    QLocalSocket silent;
    silent.connectToServer(folder.path() + QStringLiteral("/window/socket"));
    silent.write("pan");
    EXPECT_TRUE(OtherStart(folder, Wish::panel).handsOver());
    EXPECT_EQ(heard, std::vector{Wish::panel});
}

TEST(SingleInstance, IsFollowedByWhoStartsWhileItEnds)
{
    const QTemporaryDir folder;
    auto first = std::make_unique<SingleInstance>(folder.path().toStdString());
    ASSERT_TRUE(first->takeOrHandOver(Wish::panel));
    first->retire();
    const OtherStart next(folder, Wish::panel);
    QTimer::singleShot(100, [&] { first.reset(); });
    EXPECT_TRUE(next.takesOver());
}

} // namespace
} // namespace orvane
