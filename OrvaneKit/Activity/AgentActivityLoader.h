// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Activity/ActivityDay.h"
#include "AgentLogs/AgentSource.h"
#include "Support/Task.h"
#include "Time/UserTime.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace orvane {

/// Finds the agents' logs, reads what changed in them since it last looked, and answers with days.
///
/// An actor: all its state belongs to one executor of its own, and a pass over the files runs there (its
/// files are parsed on all cores). Its calls can come from any thread with an event loop and resume there.
/// Whoever holds the account owns it. It reads the logs and never changes them; a log that cannot be read is
/// passed over and tried again at the next request.
///
/// A log that was last written before the days asked for is left unread, unless it belongs to a session that
/// went on. What was read is kept in memory: of 65,536 logs at most, and 64 MiB; a log that was forgotten is
/// read again when it is needed.
class AgentActivityLoader {
public:
    /// What to build.
    struct Request {
        std::vector<DayKey> days;
        UserTime zone = UserTime::utc(); ///< whose days they are
        std::string home;                ///< the folder that holds ".claude", ".codex" and ".copilot"
        std::string fixtures; ///< instead of `home`: a folder that holds "claude", "codex", "copilot"
        std::vector<AgentSource> sources{allAgentSources.begin(), allAgentSources.end()};
        std::set<std::string> ignoring; ///< identities of the repositories to leave out

        bool operator==(const Request &) const = default;
    };
    /// What an answer cost.
    struct Cost {
        std::int64_t files = 0;             ///< log files there are
        std::int64_t bytesRead = 0;         ///< bytes of logs read for this answer
        std::int64_t peakBufferedBytes = 0; ///< the most of them that was held in memory at once
        double seconds = 0;
    };
    struct Answer {
        /// One for each day asked for, in that order. Never null; shared, since the same request is answered
        /// with the same days as long as nothing changed.
        std::shared_ptr<const std::vector<ActivityDay>> days;
        Cost cost;
    };
    struct Progress {
        std::int64_t done = 0;  ///< bytes read
        std::int64_t total = 0; ///< bytes to read in this pass
    };
    /// Called now and then while logs are read, on one of the loader's threads, one call at a time.
    using ProgressHandler = std::function<void(Progress)>;

    AgentActivityLoader();
    ~AgentActivityLoader();
    AgentActivityLoader(const AgentActivityLoader &) = delete;
    AgentActivityLoader &operator=(const AgentActivityLoader &) = delete;

    /// One request at a time is worked on; the others wait for it and are answered from what it learnt.
    Task<Answer> days(Request request, ProgressHandler progress = {});
    /// Forgets everything read, so that the next request reads all logs from the start.
    Task<> clear();

private:
    class State;
    std::shared_ptr<State> m_state;
};

} // namespace orvane
