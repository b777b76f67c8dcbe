// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentConnector/AgentConnector.h"
#include "CommandTree.h"
#include "Commands/Commands.h"
#include "Commands/ConnectConsent.h"
#include "Output/ConnectShapes.h"
#include "Output/JsonShapes.h"
#include "Terminal/StandardStreams.h"

#include <unistd.h>

namespace orvane {

namespace {

std::string linesOf(const std::vector<std::string> &commands)
{
    std::string lines;
    for (const std::string &command : commands)
        lines += command + "\n";
    return lines;
}

bool isThere(AgentSituation situation)
{
    return situation == AgentSituation::connected || situation == AgentSituation::added;
}

/// Whether the sentence asks to copy the commands.
bool asksToCopy(AgentSituation situation)
{
    return situation == AgentSituation::missing || situation == AgentSituation::noAnswer;
}

CommandTask printCommands(Context context, std::vector<std::string> commands)
{
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(shapes::Connection{{}, commands})};
    co_return CommandAnswer{.output = linesOf(commands)};
}

/// What the browser is sent on to by "Allow in Orvane"; none where nobody can be asked, so that the window
/// is.
std::shared_ptr<CallbackInput> consentInput(const CommandContext &context)
{
    if (context.json() || ::isatty(STDIN_FILENO) == 0)
        return nullptr;
    writeMessage(
        "Your browser asks whether the agent may use Orvane. Choose Allow in Orvane there, and answer "
        "here. If that opens nothing, paste the address of that link, and press Return.");
    return std::make_shared<CallbackInput>(CallbackSocket::usualFolder());
}

CommandTask connectAgent(Context context, CodingAgent agent, bool prints)
{
    const auto opened = co_await context->openAccount();
    if (!opened)
        co_return failure(opened.error());
    const std::string endpoint = agentEndpoint((*opened)->server());
    const std::vector<std::string> commands{addCommand(agent, endpoint), removeCommand(agent)};
    if (prints)
        co_return co_await printCommands(context, commands);
    AgentConnector connector({.folder = context->installation().root()});
    context->progress().begin("Waiting for " + displayNameOf(agent) + ". Your browser opens to sign in.");
    const auto input = consentInput(*context);
    std::optional<Task<>> answering;
    if (input)
        answering = answerAgents(context, input);
    const AgentSituation situation = co_await connector.connectAgent(agent, endpoint);
    if (input) {
        input->stop();
        co_await *answering;
    }
    context->noteAnswer();
    context->progress().finish();
    const std::string message = connector.message(agent);
    const ExitStatus status = isThere(situation) ? ExitStatus::done : ExitStatus::failed;
    if (context->json())
        co_return CommandAnswer{.output = shapes::text(shapes::Connection{message, commands}),
                                .exitStatus = status};
    if (isThere(situation))
        co_return CommandAnswer{.output = message + "\n"};
    writeMessage(message);
    co_return CommandAnswer{.output = asksToCopy(situation) ? linesOf(commands) : std::string(),
                            .exitStatus = status};
}

} // namespace

void addConnectCommand(CommandTree &tree)
{
    CLI::App *connect =
        tree.add("connect", "Connect a coding agent, so that it can propose time", "The account");
    tree.onRunPlain(connect, [](const CommandTree &) -> CommandResult {
        return failure(CommandFailure::usage(
            "Say which agent: orvane connect claude, or orvane connect codex. See: orvane connect --help"));
    });
    for (const CodingAgent agent : codingAgents) {
        const auto prints = std::make_shared<bool>(false);
        CLI::App *command = CommandTree::addVerb(
            connect, toolOf(agent), "Add the server to " + displayNameOf(agent) + ", and sign in there");
        CommandTree::addFlag(command, "--print", *prints,
                             "Only show the commands that add it and take it out, to copy them");
        tree.onRun(command, [agent, prints](Context context) {
            return connectAgent(std::move(context), agent, *prints);
        });
    }
}

} // namespace orvane
