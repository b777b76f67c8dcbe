// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/ConnectConsent.h"

#include "Client/OrvaneClient.h"
#include "Commands/OpenInBrowser.h"
#include "SignIn/AgentAnswer.h"
#include "SignIn/AgentCallback.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TerminalStyle.h"
#include "Terminal/TextWidth.h"

#include <algorithm>
#include <unistd.h>

namespace orvane {

namespace {

constexpr std::string_view proposeScope = "time:propose";

/// Of the preview, those that the agent is to be let into: the one that the command names, or all.
struct OfferedWorkspaces {
    std::vector<std::string> ids;
    std::string names;
};

OfferedWorkspaces offeredWorkspaces(const CommandContext &context, const OAuthAuthorizationPreview &preview)
{
    const auto &wanted = context.options().workspace;
    OfferedWorkspaces offered;
    for (const OrganizationAccess &organization : preview.organizations) {
        for (const WorkspaceSummary &workspace : organization.workspaces) {
            if (wanted && workspace.id != *wanted)
                continue;
            offered.ids.push_back(workspace.id);
            offered.names += (offered.names.empty() ? "" : ", ") + printable(workspace.name);
        }
    }
    return offered;
}

std::string questionAbout(const OAuthAuthorizationPreview &preview, const OfferedWorkspaces &offered)
{
    const std::string name = printable(preview.clientName);
    const bool proposes = std::ranges::find(preview.scopes, proposeScope) != preview.scopes.end();
    return name + " asks to use Orvane. The name is what it says of itself; your answer goes to " +
           printable(preview.redirectHost) + ".\nAllow " + name + " to read your projects and entries in " +
           offered.names +
           (proposes ? ", and to propose entries and changes, which wait for your answer" : "") + "? [y/N] ";
}

bool isYes(const std::optional<std::string> &answer)
{
    return answer == "y" || answer == "Y" || answer == "yes" || answer == "Yes";
}

Task<> takeBack(OAuthAuthorizationRequest request, std::string answer)
{
    if (!AgentCallback::leadsBack(request, answer)) {
        writeMessage("The server's answer does not lead back to the agent.");
        co_return;
    }
    if (AgentCallback::isOnThisComputer(answer) ? co_await tellAgent(answer) : openInBrowser(answer))
        co_return;
    writeMessage("The agent could not be reached. Open in your browser: " + printable(answer));
}

Task<> answerAgent(Context context, std::shared_ptr<CallbackInput> input, OAuthAuthorizationRequest request)
{
    const OrvaneClient &client = context->account()->client();
    // The browser has taken its time, and so may the user.
    context->noteAnswer();
    const auto preview = co_await client.previewAgentAuthorization(request);
    if (!preview) {
        writeMessage(describe(preview.error()));
        co_return;
    }
    const OfferedWorkspaces offered = offeredWorkspaces(*context, *preview);
    if (offered.ids.empty()) {
        writeMessage("There is no such workspace to let the agent into.");
        co_return;
    }
    context->progress().finish();
    writeErrors(wrapped(questionAbout(*preview, offered), TerminalStyle::of(STDERR_FILENO).width));
    const auto answer = co_await input->answer();
    if (!answer)
        co_return;
    context->noteAnswer();
    const auto answered = co_await client.answerAgentAuthorization(
        {.authorization = request,
         .isApproved = isYes(answer),
         .workspaceIds = isYes(answer) ? offered.ids : std::vector<std::string>()});
    if (answered)
        co_await takeBack(request, answered->redirectUri);
    else
        writeMessage(describe(answered.error()));
}

} // namespace

Task<> answerAgents(Context context, std::shared_ptr<CallbackInput> input)
{
    while (const auto arrived = co_await input->next()) {
        if (const auto request = AgentCallback::read(*arrived))
            co_await answerAgent(context, input, *request);
        else
            writeMessage("That is not it: the address begins with " + std::string(AgentCallback::address) +
                         ".");
    }
}

} // namespace orvane
