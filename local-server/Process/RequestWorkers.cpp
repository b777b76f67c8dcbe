// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/RequestWorkers.h"

#include "Database/Sqlite.h"

#include <QLoggingCategory>
#include <QThread>
#include <algorithm>

namespace orvane::server {

namespace {

Q_LOGGING_CATEGORY(workerLog, "orvane.server.workers")

/// Each keeps a connection with its cache.
constexpr int mostReaders = 8;

} // namespace

WorkerLane::WorkerLane(std::string databasePath, int mostThreads)
    : m_databasePath(std::move(databasePath)), m_mostThreads(static_cast<std::size_t>(mostThreads))
{
}

void WorkerLane::end()
{
    {
        const std::lock_guard lock(m_lock);
        m_isEnding = true;
        m_waiting.clear();
    }
    m_hasWork.notify_all();
    for (std::thread &thread : m_threads)
        thread.join();
    m_threads.clear();
}

void WorkerLane::run(Executor::Transaction work)
{
    const std::lock_guard lock(m_lock);
    if (m_isEnding)
        return;
    m_waiting.push_back(std::move(work));
    if (m_idle < m_waiting.size() && m_threads.size() < m_mostThreads)
        m_threads.emplace_back([this] { workThrough(); });
    m_hasWork.notify_one();
}

void WorkerLane::workThrough()
{
    std::unique_ptr<Database> database;
    while (const auto work = next()) {
        if (!database) {
            auto opened = Database::connect(m_databasePath);
            if (opened)
                database = std::move(*opened);
            else
                qCWarning(workerLog, "%s", opened.error().c_str());
        }
        (*work)(database.get());
    }
}

std::optional<Executor::Transaction> WorkerLane::next()
{
    std::unique_lock lock(m_lock);
    ++m_idle;
    m_hasWork.wait(lock, [this] { return m_isEnding || !m_waiting.empty(); });
    --m_idle;
    if (m_isEnding)
        return std::nullopt;
    auto work = std::move(m_waiting.front());
    m_waiting.pop_front();
    return work;
}

int RequestWorkers::defaultReaders()
{
    return std::clamp(QThread::idealThreadCount(), 2, mostReaders);
}

int RequestWorkers::defaultWriters()
{
    return sqlite::writersAtATime;
}

} // namespace orvane::server
