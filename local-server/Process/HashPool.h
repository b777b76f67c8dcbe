// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QThreadPool>
#include <atomic>
#include <functional>

namespace orvane::server {

/// A few threads for the work of password hashes, so that requests are answered meanwhile: they give way to
/// the others. Used from any thread; its end waits for what is being worked on, and forgets the rest.
class HashPool {
public:
    HashPool();
    HashPool(const HashPool &) = delete;
    HashPool &operator=(const HashPool &) = delete;
    ~HashPool();

    /// Has `work` done on one of the threads, and then calls `done` there. False when too much is waiting
    /// already: neither is called then.
    bool run(std::function<void()> work, std::function<void()> done);

private:
    QThreadPool m_threads;
    std::atomic<int> m_waiting = 0;
};

} // namespace orvane::server
