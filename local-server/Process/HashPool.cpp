// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/HashPool.h"

#include <QThread>
#include <algorithm>
#include <sys/resource.h>

namespace orvane::server {

namespace {

/// Each takes 64 MiB while it works.
constexpr int mostThreads = 4;
/// Some ten seconds of work: nobody waits for longer than that.
constexpr int mostWaiting = 128;

/// Has the system prefer the threads that answer, while it is short of processors. Only Linux does so for a
/// thread alone.
void giveWay()
{
#ifdef __linux__
    constexpr int politeness = 10;
    ::setpriority(PRIO_PROCESS, 0, politeness);
#endif
}

} // namespace

HashPool::HashPool()
{
    // One processor is left to those who answer.
    m_threads.setMaxThreadCount(std::clamp(QThread::idealThreadCount() - 1, 1, mostThreads));
}

HashPool::~HashPool()
{
    m_threads.clear();
    m_threads.waitForDone();
}

bool HashPool::run(std::function<void()> work, std::function<void()> done)
{
    if (m_waiting.fetch_add(1) >= mostWaiting) {
        --m_waiting;
        return false;
    }
    m_threads.start([this, work = std::move(work), done = std::move(done)] {
        giveWay();
        work();
        --m_waiting;
        done();
    });
    return true;
}

} // namespace orvane::server
