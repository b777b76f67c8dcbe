// SPDX-License-Identifier: GPL-3.0-or-later
#include "Support/Eventual.h"

#include "Support/Task.h"
#include "support/Await.h"

#include <QThread>
#include <gtest/gtest.h>
#include <memory>
#include <string>

namespace orvane {
namespace {

using testing::await;
using testing::eventually;

Task<std::string> copyOf(Eventual<std::string> eventual)
{
    co_return co_await eventual;
}

Task<std::unique_ptr<int>> takenFrom(Eventual<std::unique_ptr<int>> eventual)
{
    co_return co_await std::move(eventual);
}

/// The thread on which the waiter went on.
Task<QThread *> threadAfter(Eventual<std::string> eventual)
{
    co_await eventual;
    co_return QThread::currentThread();
}

TEST(Eventual, GivesItsFirstValueToAllWhoWait)
{
    const Eventual<std::string> eventual;
    auto first = copyOf(eventual);
    auto second = copyOf(eventual);
    EXPECT_FALSE(eventual.isFinished());
    EXPECT_TRUE(eventual.finish("a"));
    EXPECT_FALSE(eventual.finish("b"));
    EXPECT_TRUE(first.isReady() && second.isReady()) << "in place means inside finish";
    EXPECT_EQ(await(std::move(first)), "a");
    EXPECT_EQ(await(std::move(second)), "a");
    EXPECT_EQ(await(copyOf(eventual)), "a");
}

TEST(Eventual, HandsOverWhatCannotBeCopied)
{
    const Eventual<std::unique_ptr<int>> eventual;
    auto taken = takenFrom(eventual);
    eventual.finish(std::make_unique<int>(7));
    EXPECT_EQ(*await(std::move(taken)), 7);
}

TEST(Eventual, ResumesFromTheLoopAndNeverBefore)
{
    const Eventual<std::string> eventual(ResumeWaiters::fromTheirLoops);
    auto early = copyOf(eventual);
    eventual.finish("a");
    EXPECT_FALSE(early.isReady());
    auto late = copyOf(eventual);
    EXPECT_FALSE(late.isReady());
    EXPECT_EQ(await(std::move(early)), "a");
    EXPECT_EQ(await(std::move(late)), "a");
}

TEST(Eventual, ResumesEachWaiterOnItsOwnThread)
{
    const Eventual<std::string> eventual(ResumeWaiters::fromTheirLoops);
    auto here = threadAfter(eventual);
    std::atomic<bool> wentOnThere = false;
    const std::unique_ptr<QThread> other(QThread::create([&, eventual] {
        auto there = threadAfter(eventual);
        eventual.finish("a");
        wentOnThere = await(std::move(there)) == QThread::currentThread();
    }));
    other->start();
    EXPECT_EQ(await(std::move(here)), QThread::currentThread());
    EXPECT_TRUE(eventually([&] { return other->isFinished(); }));
    EXPECT_TRUE(wentOnThere);
}

} // namespace
} // namespace orvane
