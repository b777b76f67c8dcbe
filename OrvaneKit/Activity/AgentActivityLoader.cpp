// SPDX-License-Identifier: GPL-3.0-or-later
#include "Activity/AgentActivityLoader.h"

#include "Activity/ActivityTimeline.h"
#include "Activity/RepositoryCache.h"
#include "Activity/SessionGathering.h"
#include "Activity/TimedPhase.h"
#include "Activity/TitleIndex.h"
#include "AgentLogs/ActivityCache.h"
#include "AgentLogs/ActivityFileInventory.h"
#include "AgentLogs/AgentLogFormat.h"
#include "AgentLogs/LogReading.h"
#include "Support/AsyncHop.h"

#include <QThreadPool>
#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <unordered_set>

namespace orvane {

namespace {

using File = ActivityFileInventory::File;
using logreading::Job;
using logreading::SharedCached;

/// Half of what a cold read of half a gigabyte may take. A log that gave little weighs little, so the count
/// is no limit that anybody meets.
constexpr std::int64_t cacheBytes = std::int64_t{64} * 1024 * 1024;
constexpr std::size_t cacheCount = 65'536;

constexpr std::size_t agentCount = allAgentSources.size();

std::size_t placeOf(AgentSource source)
{
    return static_cast<std::size_t>(source);
}

/// The stretch that all the days asked for lie in, with what can reach into it from before.
InstantInterval reach(const AgentActivityLoader::Request &request)
{
    InstantInterval reach{Instant::max(), Instant::min()};
    for (const DayKey day : request.days) {
        const InstantInterval interval = request.zone.dayInterval(day);
        reach.from = std::min(reach.from, interval.from - ActivityTimeline::attentionSpan);
        reach.to = std::max(reach.to, interval.to);
    }
    return reach;
}

/// The agent's own folder.
std::string agentFolder(const AgentActivityLoader::Request &request, const AgentLogFormat &format)
{
    return request.fixtures.empty() ? request.home + "/" + std::string(format.folder)
                                    : request.fixtures + "/" + std::string(format.fixtureFolder);
}

/// What the files of one session have in common: where a project's folder holds a log and a folder of the
/// same name, that name.
std::string_view groupOf(const AgentLogFormat &format, std::string_view root, std::string_view path)
{
    if (format.grouping == AgentLogFormat::Grouping::log)
        return path;
    const std::string_view project = path.substr(0, path.find('/', root.size() + 1));
    if (project.size() == path.size())
        return path;
    const std::string_view session = path.substr(0, path.find('/', project.size() + 1));
    return session.ends_with(".jsonl") ? session.substr(0, session.size() - 6) : session;
}

bool touches(const AgentSession &session, InstantInterval reach)
{
    const auto first = std::ranges::lower_bound(session.events, reach.from, {}, &AgentEvent::date);
    return first != session.events.end() && first->date < reach.to;
}

/// A finished answer and everything that it was made of.
struct Completed {
    AgentActivityLoader::Request request;
    std::array<std::vector<File>, agentCount> files;
    std::array<std::optional<ActivityFileStamp>, agentCount> indexes;
    std::vector<RepositoryCache::Repository> repositories;
    std::shared_ptr<const std::vector<ActivityDay>> days;
};

/// What one pass over the files found.
struct Gathered {
    std::vector<AgentSession> titled; ///< sessions whose title an index gives
    SessionGathering sessions;
    std::vector<PlacedSession> placed;
    std::vector<RepositoryCache::Repository> repositories;
};

} // namespace

class AgentActivityLoader::State {
public:
    State() { m_executor.setMaxThreadCount(1); }

    Answer days(const Request &request, const ProgressHandler &progress);
    void clear();

    QThreadPool &executor() { return m_executor; }
    /// Rises when what is being worked on is built on something that does not hold any more.
    std::atomic<std::uint64_t> generation = 0;
    /// Nobody waits for an answer any more.
    std::atomic<bool> isClosing = false;

private:
    using FilesByAgent = std::array<std::vector<File>, agentCount>;
    /// What each file of an agent gave; null for one left unread.
    using ReadByAgent = std::array<std::vector<SharedCached>, agentCount>;

    Answer pass(const Request &request, const ProgressHandler &progress);
    FilesByAgent list(const Request &request);
    bool isAnswered(const Request &request, const FilesByAgent &files) const;
    std::vector<bool> wanted(const AgentLogFormat &format, const Request &request,
                             const std::vector<File> &files, Instant from) const;
    bool read(const Request &request, const FilesByAgent &files, ReadByAgent &read, Cost &cost,
              const ProgressHandler &progress);
    void gather(const ReadByAgent &read, InstantInterval reach, Gathered &gathered);

    ActivityFileInventory m_inventory;
    ActivityCache<SharedCached> m_cache{cacheBytes, cacheCount};
    std::array<TitleIndex, agentCount> m_indexes;
    RepositoryCache m_repositories{""};
    std::optional<Completed> m_completed;
    /// Last, so that what still runs on it ends before the rest goes.
    QThreadPool m_executor;
};

AgentActivityLoader::AgentActivityLoader() : m_state(std::make_shared<State>()) {}

AgentActivityLoader::~AgentActivityLoader()
{
    m_state->isClosing = true;
    m_state->executor().waitForDone();
}

Task<AgentActivityLoader::Answer> AgentActivityLoader::days(Request request, ProgressHandler progress)
{
    const auto state = m_state;
    const auto asked = std::chrono::steady_clock::now();
    co_return co_await runOn(state->executor(), [state = state.get(), asked, request = std::move(request),
                                                 progress = std::move(progress)] {
        {
            const TimedPhase wait("Activity wait", asked);
        }
        const TimedPhase load("Activity load");
        return state->days(request, progress);
    });
}

Task<> AgentActivityLoader::clear()
{
    const auto state = m_state;
    ++state->generation;
    co_await runOn(state->executor(), [state = state.get()] {
        state->clear();
        return true;
    });
}

void AgentActivityLoader::State::clear()
{
    m_inventory.clear();
    m_cache.clear();
    m_indexes = {};
    m_repositories.clear();
    m_completed.reset();
}

AgentActivityLoader::Answer AgentActivityLoader::State::days(const Request &request,
                                                             const ProgressHandler &progress)
{
    const auto began = std::chrono::steady_clock::now();
    if (m_repositories.home() != request.home)
        m_repositories = RepositoryCache(request.home);
    Answer answer{.days = std::make_shared<std::vector<ActivityDay>>(), .cost = {}};
    for (std::uint64_t seen = ~generation; seen != generation && !isClosing;) {
        // An answer that was built while everything was forgotten is built anew.
        seen = generation;
        answer = pass(request, progress);
    }
    answer.cost.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - began).count();
    return answer;
}

AgentActivityLoader::Answer AgentActivityLoader::State::pass(const Request &request,
                                                             const ProgressHandler &progress)
{
    Answer answer;
    FilesByAgent files = list(request);
    for (const auto &list : files)
        answer.cost.files += std::ssize(list);
    if (isAnswered(request, files)) {
        answer.days = m_completed->days;
        return answer;
    }
    m_completed.reset();
    ReadByAgent read;
    const bool isWhole = this->read(request, files, read, answer.cost, progress);
    Gathered gathered;
    gather(read, reach(request), gathered);
    auto days = std::make_shared<std::vector<ActivityDay>>();
    for (const DayKey day : request.days)
        days->push_back(
            ActivityTimeline::day(day, request.zone.dayInterval(day), gathered.placed, request.ignoring));
    answer.days = std::move(days);
    // A log that could not be read is tried again.
    if (!isWhole)
        return answer;
    m_completed = Completed{request, std::move(files), {}, std::move(gathered.repositories), answer.days};
    for (std::size_t agent = 0; agent < agentCount; ++agent)
        m_completed->indexes[agent] = m_indexes[agent].stamp();
    return answer;
}

AgentActivityLoader::State::FilesByAgent AgentActivityLoader::State::list(const Request &request)
{
    FilesByAgent files;
    for (const AgentSource source : request.sources) {
        const AgentLogFormat &format = AgentLogFormat::of(source);
        const std::string folder = agentFolder(request, format);
        files[placeOf(source)] = m_inventory.files(format, folder + "/" + std::string(format.logs));
        if (!format.titleIndex.empty())
            m_indexes[placeOf(source)].refresh(format, folder + "/" + std::string(format.titleIndex));
    }
    return files;
}

/// Whether the last answer is the one to this request and nothing behind it has changed.
bool AgentActivityLoader::State::isAnswered(const Request &request, const FilesByAgent &files) const
{
    if (!m_completed || m_completed->request != request || m_completed->files != files)
        return false;
    for (std::size_t agent = 0; agent < agentCount; ++agent) {
        if (m_completed->indexes[agent] != m_indexes[agent].stamp())
            return false;
    }
    return std::ranges::all_of(m_completed->repositories, &RepositoryCache::Repository::isCurrent);
}

/// Which files can hold something of the days asked for: those written since, and all others of their
/// sessions.
std::vector<bool> AgentActivityLoader::State::wanted(const AgentLogFormat &format, const Request &request,
                                                     const std::vector<File> &files, Instant from) const
{
    const std::string root = agentFolder(request, format) + "/" + std::string(format.logs);
    const std::int64_t since = std::chrono::floor<std::chrono::seconds>(from).time_since_epoch().count();
    std::unordered_set<std::string_view> groups;
    for (const File &file : files) {
        if (file.stamp.seconds >= since)
            groups.insert(groupOf(format, root, file.url));
    }
    std::vector<bool> wanted;
    wanted.reserve(files.size());
    for (const File &file : files)
        wanted.push_back(groups.contains(groupOf(format, root, file.url)));
    return wanted;
}

/// Whether every file that had to be read was.
bool AgentActivityLoader::State::read(const Request &request, const FilesByAgent &files, ReadByAgent &read,
                                      Cost &cost, const ProgressHandler &progress)
{
    const Instant from = reach(request).from;
    std::vector<Job> jobs;
    std::vector<SharedCached *> results;
    std::int64_t total = 0;
    for (const AgentSource source : request.sources) {
        const auto &list = files[placeOf(source)];
        auto &into = read[placeOf(source)];
        into.resize(list.size());
        const std::vector<bool> wanted = this->wanted(AgentLogFormat::of(source), request, list, from);
        for (std::size_t i = 0; i < list.size(); ++i) {
            const SharedCached *known = wanted[i] ? m_cache.find(list[i].url) : nullptr;
            if (known != nullptr && (*known)->stamp == list[i].stamp) {
                into[i] = *known;
            } else if (wanted[i]) {
                jobs.push_back({source, &list[i], known == nullptr ? nullptr : *known});
                results.push_back(&into[i]);
                total += list[i].stamp.size -
                         (known == nullptr ? 0 : std::min((*known)->state.offset, list[i].stamp.size));
            }
        }
    }
    logreading::Cost spent;
    const auto isWanted = [this, began = generation.load()] { return generation == began && !isClosing; };
    const logreading::OnBytes onBytes =
        progress ? [&](std::int64_t done) { progress({done, total}); } : logreading::OnBytes{};
    const TimedPhase parse("Activity parse");
    const auto found = logreading::readAll(jobs, spent, onBytes, isWanted);
    bool isWhole = true;
    for (std::size_t i = 0; i < jobs.size(); ++i) {
        isWhole = isWhole && found[i]->isComplete;
        if (found[i]->isComplete) {
            *results[i] = found[i];
            m_cache.insert(jobs[i].file->url, found[i], found[i]->cost());
        }
    }
    cost.bytesRead = spent.bytesRead;
    cost.peakBufferedBytes = spent.peakBufferedBytes;
    return isWhole;
}

/// The sessions with something in reach, each with its repository.
void AgentActivityLoader::State::gather(const ReadByAgent &read, InstantInterval reach, Gathered &gathered)
{
    for (const auto &list : read) {
        for (const SharedCached &cached : list) {
            if (!cached)
                continue;
            for (const AgentSession &session : cached->sessions)
                gathered.sessions.add(session);
        }
    }
    std::vector<const AgentSession *> sessions = gathered.sessions.sessions();
    std::erase_if(sessions, [&](const AgentSession *session) {
        return session->cwd.empty() || !touches(*session, reach);
    });
    gathered.titled.reserve(sessions.size());
    std::unordered_set<std::string_view> folders;
    for (const AgentSession *session : sessions) {
        const std::string *title = m_indexes[placeOf(session->source)].title(session->id);
        if (title != nullptr) {
            gathered.titled.push_back(*session);
            gathered.titled.back().title = *title;
            session = &gathered.titled.back();
        }
        const RepositoryCache::Repository &repository = m_repositories.resolve(session->cwd);
        gathered.placed.push_back({session, repository.value});
        if (folders.insert(session->cwd).second)
            gathered.repositories.push_back(repository);
    }
}

} // namespace orvane
