// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/SingleInstance.h"

#include "support/Await.h"

#include <QLocalSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace orvane {
namespace {

using testing::eventually;
using Wish = SingleInstance::Wish;

TEST(SingleInstance, HandsASecondStartToTheFirst)
{
    const QTemporaryDir folder;
    auto first = std::make_unique<SingleInstance>(folder.path().toStdString());
    int raised = 0;
    QObject::connect(first.get(), &SingleInstance::wished, first.get(), [&](Wish) { ++raised; });
    ASSERT_TRUE(first->takeOrHandOver(Wish::raise));
    EXPECT_FALSE(SingleInstance(folder.path().toStdString()).takeOrHandOver(Wish::raise));
    EXPECT_TRUE(eventually([&] { return raised == 1; }));

    // Noise is no wish, and does not keep the next one waiting.
    QLocalSocket stranger;
    stranger.connectToServer(folder.path() + QStringLiteral("/window/socket"));
    stranger.write(QByteArray(100'000, 'x'));
    EXPECT_TRUE(eventually([&] { return stranger.state() == QLocalSocket::UnconnectedState; }));
    EXPECT_FALSE(SingleInstance(folder.path().toStdString()).takeOrHandOver(Wish::raise));
    EXPECT_TRUE(eventually([&] { return raised == 2; }));

    struct stat status{};
    ASSERT_EQ(::stat((folder.path() + QStringLiteral("/window")).toStdString().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0700U);
    first.reset();
    EXPECT_TRUE(SingleInstance(folder.path().toStdString()).takeOrHandOver(Wish::raise));
}

} // namespace
} // namespace orvane
