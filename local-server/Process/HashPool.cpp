// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/HashPool.h"

#include <QThread>
#include <algorithm>

namespace orvane::server {

namespace {

/// Each takes 64 MiB while it works.
constexpr int mostThreads = 4;
/// Some ten seconds of work: nobody waits for longer than that.
constexpr int mostWaiting = 128;

} // namespace

HashPool::HashPool()
{
    // One processor is left to the server's own thread.
    m_threads.setMaxThreadCount(std::clamp(QThread::idealThreadCount() - 1, 1, mostThreads));
}

HashPool::~HashPool()
{
    m_threads.clear();
    m_threads.waitForDone();
}

bool HashPool::run(std::function<void()> work, std::function<void()> done)
{
    if (m_waiting >= mostWaiting)
        return false;
    ++m_waiting;
    m_threads.start([this, work = std::move(work), done = std::move(done)] {
        work();
        const auto back = [this, done] {
            --m_waiting;
            done();
        };
        QMetaObject::invokeMethod(this, back, Qt::QueuedConnection);
    });
    return true;
}

} // namespace orvane::server
