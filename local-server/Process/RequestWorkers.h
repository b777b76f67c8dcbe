// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Requests/Executor.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace orvane::server {

/// Threads that run transactions of one lane, the one that was asked for first first. Each begins when there
/// is more to do than the others can, and has a database of its own from then on. Used from any thread; its
/// end waits for what is being worked on, and forgets the rest.
class WorkerLane {
public:
    WorkerLane(std::string databasePath, int mostThreads);
    WorkerLane(const WorkerLane &) = delete;
    WorkerLane &operator=(const WorkerLane &) = delete;
    ~WorkerLane() { end(); }

    /// Waits for what is being worked on; the rest, and what comes later, is forgotten.
    void end();
    void run(Executor::Transaction work);

private:
    void workThrough();
    std::optional<Executor::Transaction> next();

    const std::string m_databasePath;
    const std::size_t m_mostThreads;
    std::mutex m_lock;
    std::condition_variable m_hasWork;
    std::deque<Executor::Transaction> m_waiting;
    std::vector<std::thread> m_threads;
    std::size_t m_idle = 0;
    bool m_isEnding = false;
};

/// The threads of a server's requests: some that read, beside those that write.
class RequestWorkers {
public:
    struct Options {
        /// A file, whose tables are up to date.
        std::string databasePath;
        int readers = defaultReaders();
        int writers = defaultWriters();
    };
    explicit RequestWorkers(const Options &options)
        : m_readers(options.databasePath, options.readers), m_writers(options.databasePath, options.writers)
    {
    }

    void transact(Lane lane, Executor::Transaction work)
    {
        (lane == Lane::reading ? m_readers : m_writers).run(std::move(work));
    }

    /// Of both, before either goes: what one of them does may ask for the other.
    void end()
    {
        m_readers.end();
        m_writers.end();
    }

private:
    static int defaultReaders();
    static int defaultWriters();

    WorkerLane m_readers;
    WorkerLane m_writers;
};

} // namespace orvane::server
