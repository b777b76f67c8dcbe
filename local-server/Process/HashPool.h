// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QThreadPool>
#include <functional>

namespace orvane::server {

/// A few threads for the work of password hashes, so that the server's own thread goes on answering. Used on
/// the thread that made it; its end waits for what is being worked on, and forgets the rest.
class HashPool : public QObject {
public:
    HashPool();
    ~HashPool() override;

    /// Has `work` done on one of the threads and then calls `done` on this one. False when too much is
    /// waiting already: neither is called then.
    bool run(std::function<void()> work, std::function<void()> done);

private:
    QThreadPool m_threads;
    int m_waiting = 0;
};

} // namespace orvane::server
