// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/AgentSession.h"
#include "AgentLogs/ToolCall.h"
#include "Support/Json.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Reads one agent's log line by line and keeps what it tells of its sessions: when the user prompted, when
/// the agent worked, in which folder and on which branches, and a title. No other word of a prompt or an
/// answer is kept.
///
/// A value for each log file; any thread, one at a time. Its state can be saved behind any line and read
/// back, and reading goes on from there as if it had never stopped. A line that is not understood changes
/// nothing.
///
/// Which lines count as prompts is told in AgentPrompts.h. A turn begins at a prompt (in Codex also where a
/// task starts). The work of a turn that called our own connector's tools and no other is not counted, its
/// prompt is; a turn without calls is work. While a turn has only called our tools its work is held back,
/// since the next call may be another.
class AgentLogParser {
public:
    struct Turn {
        Instant touch;                    ///< the latest sign of work
        std::optional<bool> callsOnlyOwn; ///< nothing before the first call
        std::string title;                ///< what the prompt gives for a title; empty when it tells nothing
        std::vector<Instant> touches;     ///< work held back until a call shows what the turn is
        bool awaitsPrompt = false;        ///< began where a task starts; the prompt comes after it

        bool operator==(const Turn &) const = default;
    };
    /// Everything that a later line can depend on.
    struct State {
        /// More prompts than anybody queues.
        static constexpr std::size_t queuedAtMost = 64;

        AgentSource source = AgentSource::claude;
        std::map<std::string, AgentSession> sessions; ///< by key; events in the order of the lines
        std::string currentID;                        ///< whose lines they are that name no session
        std::map<std::string, std::string> customTitles;
        std::map<std::string, Turn> turns; ///< by session
        bool titleFinished = false;
        std::vector<std::int64_t> queued; ///< digests of prompts that were queued and may come again as lines
        bool isSubagent = false;          ///< the prompts of this file were given by another agent
        /// The lines of a forked session repeat its parent's; they are passed over up to the session's own
        /// start, a second after this instant at the latest.
        std::optional<Instant> forkedAt;

        bool operator==(const State &) const = default;
    };

    /// With `readsQuickly` unset every line is decoded in full, which tells the same more slowly.
    explicit AgentLogParser(AgentSource source, bool readsQuickly = true);
    explicit AgentLogParser(State state, bool readsQuickly = true);
    AgentLogParser(AgentLogParser &&) = default;
    AgentLogParser &operator=(AgentLogParser &&) = default;

    /// A line without its line feed.
    void read(std::string_view line);
    const State &state() const & { return m_state; }
    State state() && { return std::move(m_state); }
    /// What is known so far. Sessions by key; a session without any event is among them when the log names
    /// it.
    std::vector<AgentSession> sessions() const;

private:
    void readClaude(std::string_view line);
    bool readClaudeQuickly(std::string_view line);
    void readClaudeFully(std::string_view line);
    void readCodex(std::string_view line);
    bool readCodexQuickly(std::string_view line);
    void readCodexFully(std::string_view line);
    void readCopilot(std::string_view line);
    bool readCopilotQuickly(std::string_view line);
    void readCopilotFully(std::string_view line);

    /// The session with this key, which becomes the one that lines without a name belong to.
    AgentSession &session(std::string_view prefix, std::string_view id);
    AgentSession &session(const std::string &key);
    /// The session of lines that name none; null when none was named yet.
    AgentSession *current();
    void prompt(AgentSession &session, Instant date, std::string_view text);
    /// As `prompt`, for one that may come again as a line of its own.
    void queuedPrompt(AgentSession &session, Instant date, std::string_view text);
    bool wasQueued(std::string_view text);
    void beginTask(AgentSession &session, Instant date);
    void work(AgentSession &session, Instant date, const ToolCalls &calls = {});

    Turn &turn(const AgentSession &session);
    void endTurn(AgentSession &session, Turn &turn);
    void settleTitle(AgentSession &session, const Turn &turn);
    bool isPassingOver(Instant date, std::string_view taskStarted = {});

    State m_state;
    bool m_readsQuickly;
    /// The session of the line before, since the next line is mostly of the same.
    AgentSession *m_last = nullptr;
    Turn *m_lastTurn = nullptr;
};

/// Puts what a line says of a session's place into it.
void placeSession(AgentSession &session, std::string_view folder, std::string_view branch);

} // namespace orvane
