// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentConnector/AgentCommands.h"
#include "AgentConnector/RegisteredEndpoints.h"
#include "AgentConnector/ShellCommand.h"
#include "Support/Task.h"

#include <QObject>
#include <array>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

/// How an attempt to connect an agent, or to disconnect it, ended.
enum class AgentSituation {
    /// Nothing was tried yet, or it was called off before anything had changed.
    none,
    connected,
    /// Claude Code of before its sign-in could be begun from outside.
    added,
    notSignedIn,
    missing,
    noAnswer,
    failed,
    disconnected,
    notDisconnected,
};

/// The sentence for people; empty for `none`.
std::string describe(AgentSituation situation, CodingAgent agent);

/// Tells coding agents where the server is, by their own commands in the user's login shell, and begins their
/// sign-in. An agent has one attempt at a time; the two agents do not wait for each other.
///
/// Owner: the command, or the application's settings. Thread: the main thread. When it goes, what is under
/// way is given up, and nothing of it goes on running.
class AgentConnector final : public QObject {
    Q_OBJECT

public:
    struct Options {
        /// Of the installation: it remembers which address each agent was told.
        std::string folder;
        /// None: this process's own.
        std::optional<ProcessEnvironment> environment = {};
        /// Where a test's time comes in; empty: the system's.
        std::function<std::unique_ptr<RetryTimer>()> timer = {};
    };

    /// A command is given up after that.
    static constexpr std::chrono::seconds limit{30};

    explicit AgentConnector(Options options);
    ~AgentConnector() override;

    /// What one of them is at, and how the last attempt ended.
    bool isRunning(CodingAgent agent) const { return at(agent).isRunning; }
    AgentSituation situation(CodingAgent agent) const { return at(agent).situation; }
    std::string message(CodingAgent agent) const { return describe(situation(agent), agent); }
    /// The address that it was told last and that was not taken back, as far as this installation knows.
    std::optional<std::string> endpoint(CodingAgent agent) const { return m_endpoints.of(agent); }

    /// Adds the server and signs in there. Does nothing while an attempt is under way.
    Task<AgentSituation> connectAgent(CodingAgent agent, std::string endpoint);
    /// Takes the server out of the agent.
    Task<AgentSituation> disconnectAgent(CodingAgent agent);
    /// Calls off what is under way.
    void cancel(CodingAgent agent);

Q_SIGNALS:
    void changed(orvane::CodingAgent agent);

private:
    struct State {
        bool isRunning = false;
        bool isCancelled = false;
        AgentSituation situation = AgentSituation::none;
        std::weak_ptr<ProcessRun> run;
    };

    const State &at(CodingAgent agent) const { return m_states.at(static_cast<std::size_t>(agent)); }
    State &at(CodingAgent agent) { return m_states.at(static_cast<std::size_t>(agent)); }
    bool begin(CodingAgent agent);
    AgentSituation end(CodingAgent agent, AgentSituation situation);
    Task<ProcessRun::Outcome> run(CodingAgent agent, std::string command);
    Task<ProcessRun::Outcome> runSignIn(CodingAgent agent, TerminalForm form);
    Task<ProcessRun::Outcome> start(CodingAgent agent, ProcessRun::Program program,
                                    std::chrono::milliseconds patience);
    Task<ProcessRun::Outcome> addAnew(CodingAgent agent, std::string endpoint);
    Task<AgentSituation> attempt(CodingAgent agent, std::string endpoint);
    Task<AgentSituation> signIn(CodingAgent agent);
    Task<TerminalForm> terminalForm(CodingAgent agent);

    Options m_options;
    RegisteredEndpoints m_endpoints;
    ProcessEnvironment m_environment;
    std::array<State, codingAgents.size()> m_states;
    std::optional<TerminalForm> m_terminalForm;
};

} // namespace orvane
