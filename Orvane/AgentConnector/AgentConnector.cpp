// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/AgentConnector.h"

#include <QPointer>
#include <QStandardPaths>
#include <QString>

namespace orvane {

namespace {

constexpr int noSuchTool = 127;

bool says(const ProcessRun::Outcome &outcome, const char *words)
{
    return outcome && QString::fromUtf8(outcome->output).contains(QLatin1String(words), Qt::CaseInsensitive);
}

/// Why the step did not do what it was for; none when it did.
std::optional<AgentSituation> problemWith(const ProcessRun::Outcome &outcome)
{
    if (outcome) {
        if (outcome->exitStatus == 0)
            return std::nullopt;
        return outcome->exitStatus == noSuchTool ? AgentSituation::missing : AgentSituation::failed;
    }
    switch (outcome.error()) {
    case ProcessRun::Failure::tookTooLong:
        return AgentSituation::noAnswer;
    case ProcessRun::Failure::givenUp:
        return AgentSituation::none;
    case ProcessRun::Failure::notStarted:
        break;
    }
    return AgentSituation::failed;
}

} // namespace

std::string describe(AgentSituation situation, CodingAgent agent)
{
    const std::string name = displayNameOf(agent);
    switch (situation) {
    case AgentSituation::none:
        break;
    case AgentSituation::connected:
        return "Connected. Start a new session in " + name + " to use Orvane.";
    case AgentSituation::added:
        return "Added to Claude Code. To sign in, run /mcp in Claude Code, choose " +
               std::string(agentServerName) + ", then Authenticate.";
    case AgentSituation::notSignedIn:
        return "Not signed in. Connect again when you're ready, or sign in from " + name + " to use Orvane.";
    case AgentSituation::missing:
        return name +
               " isn't installed, or its command isn't on the shell's path. Copy the commands instead.";
    case AgentSituation::noAnswer:
        return name + " didn't answer. Copy the commands instead.";
    case AgentSituation::failed:
        return name + " didn't connect.";
    case AgentSituation::disconnected:
        return "Disconnected. " + name + " no longer uses Orvane.";
    case AgentSituation::notDisconnected:
        return name + " didn't disconnect. Copy the commands instead.";
    }
    return {};
}

AgentConnector::AgentConnector(Options options)
    : m_options(std::move(options))
    , m_endpoints(m_options.folder)
    , m_environment(m_options.environment ? *m_options.environment : currentEnvironment())
{
    m_environment["PATH"] = searchPath(m_environment);
}

AgentConnector::~AgentConnector()
{
    for (const CodingAgent agent : codingAgents)
        cancel(agent);
}

bool AgentConnector::begin(CodingAgent agent)
{
    State &state = at(agent);
    if (state.isRunning)
        return false;
    state = {.isRunning = true, .isCancelled = false, .situation = state.situation, .run = {}};
    Q_EMIT changed(agent);
    return true;
}

AgentSituation AgentConnector::end(CodingAgent agent, AgentSituation situation)
{
    at(agent).isRunning = false;
    at(agent).situation = situation;
    Q_EMIT changed(agent);
    return situation;
}

void AgentConnector::cancel(CodingAgent agent)
{
    State &state = at(agent);
    state.isCancelled = true;
    if (const auto run = state.run.lock())
        run->giveUp();
}

Task<ProcessRun::Outcome> AgentConnector::start(CodingAgent agent, ProcessRun::Program program,
                                                std::chrono::milliseconds patience)
{
    if (at(agent).isCancelled)
        co_return failure(ProcessRun::Failure::givenUp);
    auto timer = m_options.timer ? m_options.timer() : std::make_unique<SystemRetryTimer>();
    const auto run = std::make_shared<ProcessRun>(program, std::move(timer), patience);
    at(agent).run = run;
    co_return co_await run->outcome();
}

Task<ProcessRun::Outcome> AgentConnector::run(CodingAgent agent, std::string command)
{
    const ShellCommand shell{guardedCommand(agent, command), m_environment};
    co_return co_await start(agent, shell.program(), limit);
}

Task<ProcessRun::Outcome> AgentConnector::runSignIn(CodingAgent agent, TerminalForm form)
{
    ShellCommand shell{guardedCommand(agent, signInCommand(agent, form)), m_environment};
    // The one `script` that asks a shell asks the user's own, whose start-up files begin PATH anew once more.
    if (form == TerminalForm::utilLinux)
        shell.line = variableAssignment(loginShell(m_environment), "SHELL", "/bin/sh") + shell.line;
    // The browser that it opens for the sign-in stays.
    shell.sparesDetached = true;
    co_return co_await start(agent, shell.program(), limit);
}

/// Looked up once: what can be asked for its version is of util-linux, what refuses is the BSDs' and macOS's.
Task<TerminalForm> AgentConnector::terminalForm(CodingAgent agent)
{
    if (m_terminalForm)
        co_return TerminalForm(*m_terminalForm);
    const QPointer<AgentConnector> self(this);
    const QString path = QString::fromLocal8Bit(m_environment["PATH"].c_str());
    const QString script = QStandardPaths::findExecutable(QStringLiteral("script"), path.split(u':'));
    if (script.isEmpty())
        co_return TerminalForm::none;
    constexpr std::chrono::seconds patience{2};
    const auto outcome = co_await start(agent,
                                        {.path = script.toLocal8Bit().toStdString(),
                                         .arguments = {"--version"},
                                         .environment = m_environment},
                                        patience);
    const TerminalForm form = says(outcome, "util-linux") ? TerminalForm::utilLinux
                              : says(outcome, "busybox")  ? TerminalForm::none
                                                          : TerminalForm::bsd;
    if (self && outcome)
        m_terminalForm = form;
    co_return TerminalForm(form);
}

Task<ProcessRun::Outcome> AgentConnector::addAnew(CodingAgent agent, std::string endpoint)
{
    const QPointer<AgentConnector> self(this);
    // Should it fail to remove it, adding says so again.
    const auto removed = co_await run(agent, removeCommand(agent));
    if (!self || !removed)
        co_return removed;
    co_return co_await run(agent, addCommand(agent, endpoint));
}

Task<AgentSituation> AgentConnector::attempt(CodingAgent agent, std::string endpoint)
{
    const QPointer<AgentConnector> self(this);
    const char *registeredBefore = "already exists";
    auto added = co_await run(agent, addCommand(agent, endpoint));
    // The agent does not say which address it has; it is the right one only if it was told that one here.
    if (self && says(added, registeredBefore) && m_endpoints.of(agent) != endpoint)
        added = co_await addAnew(agent, endpoint);
    if (!self)
        co_return AgentSituation::none;
    if (const auto problem = problemWith(added); problem && !says(added, registeredBefore))
        co_return AgentSituation(*problem);
    m_endpoints.set(agent, endpoint);
    co_return co_await signIn(agent);
}

Task<AgentSituation> AgentConnector::signIn(CodingAgent agent)
{
    const QPointer<AgentConnector> self(this);
    const TerminalForm form = co_await terminalForm(agent);
    if (!self)
        co_return AgentSituation::none;
    const auto signedIn = co_await runSignIn(agent, form);
    const auto problem = problemWith(signedIn);
    if (agent == CodingAgent::claudeCode && problem != AgentSituation::missing &&
        says(signedIn, "unknown command"))
        co_return AgentSituation::added;
    if (problem == AgentSituation::noAnswer || problem == AgentSituation::none)
        co_return AgentSituation::notSignedIn;
    co_return problem.value_or(AgentSituation::connected);
}

Task<AgentSituation> AgentConnector::connectAgent(CodingAgent agent, std::string endpoint)
{
    if (!begin(agent))
        co_return AgentSituation(situation(agent));
    const QPointer<AgentConnector> self(this);
    const AgentSituation how = co_await attempt(agent, endpoint);
    co_return self ? end(agent, how) : AgentSituation::none;
}

Task<AgentSituation> AgentConnector::disconnectAgent(CodingAgent agent)
{
    if (!begin(agent))
        co_return AgentSituation(situation(agent));
    const QPointer<AgentConnector> self(this);
    const AgentSituation before = situation(agent);
    const auto removed = co_await run(agent, removeCommand(agent));
    if (!self)
        co_return AgentSituation::none;
    const auto problem = problemWith(removed);
    if (!problem)
        m_endpoints.set(agent, std::nullopt);
    co_return end(agent, !problem                            ? AgentSituation::disconnected
                         : problem == AgentSituation::failed ? AgentSituation::notDisconnected
                         : problem == AgentSituation::none   ? before
                                                             : *problem);
}

} // namespace orvane
