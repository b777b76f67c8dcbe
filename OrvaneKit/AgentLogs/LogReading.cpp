// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/LogReading.h"

#include "Support/FileDescriptor.h"
#include "Support/TextDigest.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <numeric>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace orvane::logreading {

namespace {

/// How often progress is told.
constexpr std::int64_t progressStep = std::int64_t{4} * 1024 * 1024;

/// A pipe in a log's place must not hold us up.
FileDescriptor openLog(const std::string &path)
{
    return FileDescriptor(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
}

/// Nothing unless it is an open regular file.
std::optional<ActivityFileStamp> stampOf(const FileDescriptor &file)
{
    struct stat status{};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    return ActivityFileStamp::of(status);
}

/// Of a part of a file; nothing when not all of it is there.
std::optional<std::int64_t> digest(int descriptor, std::int64_t from, std::int64_t length)
{
    std::array<char, Fingerprint::prefixLength> bytes{};
    if (::pread(descriptor, bytes.data(), static_cast<std::size_t>(length), from) != length)
        return {};
    return textDigest({bytes.data(), static_cast<std::size_t>(length)});
}

std::int64_t textCost(const std::string &text)
{
    return static_cast<std::int64_t>(sizeof(std::string) + text.capacity());
}

std::int64_t sessionCost(const AgentSession &session)
{
    std::int64_t cost =
        textCost(session.id) + textCost(session.parentID) + textCost(session.cwd) + textCost(session.title);
    for (const std::string &branch : session.branches)
        cost += textCost(branch);
    return cost + static_cast<std::int64_t>(session.events.capacity() * sizeof(AgentEvent));
}

/// The parser and the place from which to read on; those of a new file when it is not the one that was read.
struct Start {
    AgentLogParser parser;
    ActivityLineReader::State state;
};

Start startOf(const Job &job, int descriptor, const ActivityFileStamp &stamp, std::int64_t &bytesRead)
{
    const Cached *before = job.before.get();
    if (before != nullptr && before->isComplete && before->state.offset > 0 &&
        before->stamp.isSameFile(stamp) && stamp.size >= before->state.offset &&
        Fingerprint::of(descriptor, before->state.offset, bytesRead) == before->fingerprint)
        return {AgentLogParser(before->parser), before->state};
    return {AgentLogParser(job.source), {}};
}

/// One thread's part of the work.
class Worker {
public:
    Worker(std::span<const Job> jobs, const std::vector<std::size_t> &order, std::atomic<std::size_t> &next,
           std::vector<SharedCached> &results, const OnBytes &onBytes, const IsWanted &isWanted)
        : m_jobs(jobs)
        , m_order(order)
        , m_next(next)
        , m_results(results)
        , m_onBytes(onBytes)
        , m_isWanted(isWanted)
    {
    }

    void run()
    {
        for (std::size_t turn = m_next++; turn < m_order.size() && m_isWanted(); turn = m_next++)
            m_results[m_order[turn]] = read(m_jobs[m_order[turn]]);
    }
    const Cost &cost() const { return m_cost; }

private:
    SharedCached read(const Job &job)
    {
        auto cached = std::make_shared<Cached>();
        const FileDescriptor file = openLog(job.file->url);
        const auto stamp = stampOf(file);
        if (!stamp)
            return cached;
        Start start = startOf(job, file.get(), *stamp, m_cost.bytesRead);
        const auto read = m_reader.read(file.get(), start.state, stamp->size,
                                        [&](std::string_view line) { start.parser.read(line); });
        // A log whose first line is too long names no session; there is no use in reading it until it
        // changes.
        const bool isNameless = !read && read.error() == ActivityLineReader::Failure::oversizedMetadata;
        if (!read && !isNameless)
            return cached;
        cached->stamp = *stamp;
        if (read) {
            m_cost.bytesRead += read->bytes;
            m_cost.peakBufferedBytes = std::max(m_cost.peakBufferedBytes, read->peakBufferedBytes);
            cached->state = read->state;
            cached->sessions = start.parser.sessions();
            cached->parser = std::move(start.parser).state();
            tell(read->bytes);
        }
        const auto fingerprint = Fingerprint::of(file.get(), cached->state.offset, m_cost.bytesRead);
        cached->fingerprint = fingerprint.value_or(Fingerprint{});
        cached->isComplete = fingerprint.has_value();
        return cached;
    }

    void tell(std::int64_t bytes)
    {
        if (m_onBytes)
            m_onBytes(bytes);
    }

    std::span<const Job> m_jobs;
    const std::vector<std::size_t> &m_order;
    std::atomic<std::size_t> &m_next;
    std::vector<SharedCached> &m_results;
    const OnBytes &m_onBytes;
    const IsWanted &m_isWanted;
    ActivityLineReader m_reader;
    Cost m_cost;
};

/// The largest first, so that no core is left alone with one at the end.
std::vector<std::size_t> orderOf(std::span<const Job> jobs)
{
    std::vector<std::size_t> order(jobs.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto bytesToRead = [&](std::size_t job) {
        const std::int64_t done = jobs[job].before ? jobs[job].before->state.offset : 0;
        return std::pair(jobs[job].file->stamp.size - done, job);
    };
    std::ranges::sort(order, std::ranges::greater{}, bytesToRead);
    return order;
}

} // namespace

std::optional<Fingerprint> Fingerprint::of(int descriptor, std::int64_t offset, std::int64_t &bytesRead)
{
    const std::int64_t prefixed = std::min(offset, prefixLength);
    const std::int64_t bounded = std::min(offset, boundaryLength);
    const auto prefix = digest(descriptor, 0, prefixed);
    const auto boundary = digest(descriptor, offset - bounded, bounded);
    bytesRead += prefixed + bounded;
    if (!prefix || !boundary)
        return {};
    return Fingerprint{*prefix, *boundary};
}

std::int64_t Cached::cost() const
{
    auto cost = static_cast<std::int64_t>(sizeof(Cached));
    for (const AgentSession &session : sessions)
        cost += sessionCost(session);
    for (const auto &[key, session] : parser.sessions)
        cost += textCost(key) + sessionCost(session);
    for (const auto &[key, turn] : parser.turns)
        cost += textCost(key) + textCost(turn.title) +
                static_cast<std::int64_t>(turn.touches.capacity() * sizeof(Instant));
    return cost;
}

std::vector<SharedCached> readAll(std::span<const Job> jobs, Cost &cost, const OnBytes &onBytes,
                                  const IsWanted &isWanted)
{
    std::vector<SharedCached> results(jobs.size());
    const std::vector<std::size_t> order = orderOf(jobs);
    std::atomic<std::size_t> next = 0;
    std::mutex mutex;
    std::int64_t done = 0;
    std::int64_t told = 0;
    const OnBytes tell = [&](std::int64_t bytes) {
        const std::lock_guard lock(mutex);
        done += bytes;
        if (onBytes && done - told >= progressStep) {
            told = done;
            onBytes(done);
        }
    };
    const std::size_t cores = std::max(1U, std::thread::hardware_concurrency());
    std::vector<Worker> workers;
    for (std::size_t i = 0; i < std::clamp<std::size_t>(jobs.size(), 1, cores); ++i)
        workers.emplace_back(jobs, order, next, results, tell, isWanted);
    {
        std::vector<std::jthread> threads;
        for (std::size_t i = 1; i < workers.size(); ++i)
            threads.emplace_back([&worker = workers[i]] { worker.run(); });
        workers.front().run();
    }
    // What was not begun is as if it could not be read.
    for (SharedCached &result : results) {
        if (!result)
            result = std::make_shared<Cached>();
    }
    for (const Worker &worker : workers) {
        cost.bytesRead += worker.cost().bytesRead;
        // Each has a buffer of its own.
        cost.peakBufferedBytes += worker.cost().peakBufferedBytes;
    }
    return results;
}

} // namespace orvane::logreading
