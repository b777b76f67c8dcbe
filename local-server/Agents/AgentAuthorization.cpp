// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentAuthorization.h"

#include "Agents/AgentMessages.h"
#include "Agents/AgentUris.h"
#include "Http/Problems.h"
#include "OrvaneAPI/UriText.h"
#include "Requests/Router.h"
#include "Security/SignInCodes.h"

#include <algorithm>

namespace orvane::server {

namespace {

std::string withState(const std::string &uri, const std::optional<std::string> &state)
{
    return state ? withQueryItem(uri, "state=" + percentEncoded(*state)) : uri;
}

/// About what comes after the place that the browser can be sent back to.
struct TermFault {
    const char *field;
    const char *error;
    const char *sentence;
};

std::optional<TermFault> termFault(const Call &call, const OAuthAuthorizationRequest &request)
{
    if (request.responseType != "code")
        return TermFault{"responseType", "unsupported_response_type", "The agent must ask for a code."};
    if (request.codeChallengeMethod != "S256" || !isCodeChallenge(request.codeChallenge))
        return TermFault{"codeChallenge", "invalid_request",
                         "The agent must bring the SHA-256 of a verifier, as base64url."};
    if (request.resource && !isOurResource(call.address, *request.resource) &&
        !isOurResource(call.services.publicAddress, *request.resource))
        return TermFault{"resource", "invalid_target", "The agent asks for another server's tools."};
    if (!asksToPropose(request.scope.value_or("")))
        return TermFault{"scope", "invalid_scope", "The agent asks for what this server does not know."};
    return std::nullopt;
}

HttpResponse refusedRequest(const AgentRequestFault &fault)
{
    return invalid(400, {{"authorization." + fault.field, {fault.sentence}}});
}

HttpResponse preview(Call &call, const operations::PreviewAgentAuthorization::Input &input)
{
    const auto request = checkAgentRequest(call, input.body);
    if (!request)
        return invalid(400, {{request.error().field, {request.error().sentence}}});
    OAuthAuthorizationPreview preview;
    preview.clientName = request->client.name;
    preview.clientUri = request->client.uri;
    preview.redirectHost = hostForPeople(request->redirectUri);
    preview.scopes = scopesOf(request->mayPropose);
    preview.organizations = workspacesToGive(call, call.caller.userId);
    return jsonAnswer(200, preview);
}

HttpResponse answer(Call &call, const operations::AnswerAgentAuthorization::Input &input)
{
    const auto request = checkAgentRequest(call, input.body.authorization);
    if (!request)
        return refusedRequest(request.error());
    if (!input.body.isApproved)
        return jsonAnswer(200, OAuthRedirectResponse{refuseAgent(*request)});
    const auto &workspaceIds = input.body.workspaceIds;
    if (workspaceIds.empty())
        return invalid(400, {{"workspaceIds", {"Choose a workspace."}}});
    if (!std::ranges::all_of(workspaceIds, [&](const std::string &id) {
            return call.workspaces.role(id, call.caller.userId).has_value();
        }))
        return forbidden("You can let an agent into your own workspaces only.");
    return jsonAnswer(200,
                      OAuthRedirectResponse{approveAgent(call, *request, call.caller.userId, workspaceIds)});
}

} // namespace

Result<AgentRequest, AgentRequestFault> checkAgentRequest(Call &call,
                                                          const OAuthAuthorizationRequest &request)
{
    auto client = AgentGrants(call.database).client(request.clientId);
    if (!client)
        return failure(AgentRequestFault{"clientId", "This agent is not registered here.", {}});
    if (!std::ranges::any_of(client->redirectUris, [&](const std::string &registered) {
            return isRegisteredRedirect(registered, request.redirectUri);
        }))
        return failure(
            AgentRequestFault{"redirectUri", "The agent did not register the address it returns to.", {}});
    if (const auto fault = termFault(call, request)) {
        const std::string back = withQueryItem(request.redirectUri, "error=" + percentEncoded(fault->error));
        return failure(AgentRequestFault{fault->field, fault->sentence, withState(back, request.state)});
    }
    return AgentRequest{.client = std::move(*client),
                        .redirectUri = request.redirectUri,
                        .challenge = request.codeChallenge,
                        .state = request.state,
                        .mayPropose = *asksToPropose(request.scope.value_or(""))};
}

std::vector<OrganizationAccess> workspacesToGive(Call &call, const std::string &userId)
{
    std::vector<OrganizationAccess> access;
    for (OrganizationSummary &organization : call.workspaces.organizationsOf(userId))
        access.push_back({.organizationId = std::move(organization.id),
                          .name = std::move(organization.name),
                          .workspaces = {}});
    for (WorkspaceSummary &workspace : call.workspaces.of(userId)) {
        const auto found =
            std::ranges::find(access, workspace.organizationId, &OrganizationAccess::organizationId);
        if (found != access.end())
            found->workspaces.push_back(std::move(workspace));
    }
    std::erase_if(access, [](const OrganizationAccess &one) { return one.workspaces.empty(); });
    return access;
}

std::vector<OrganizationAccess> workspacesAmong(Call &call, const std::string &userId,
                                                const std::vector<std::string> &workspaceIds)
{
    auto access = workspacesToGive(call, userId);
    for (OrganizationAccess &one : access)
        std::erase_if(one.workspaces, [&](const WorkspaceSummary &workspace) {
            return std::ranges::find(workspaceIds, workspace.id) == workspaceIds.end();
        });
    std::erase_if(access, [](const OrganizationAccess &one) { return one.workspaces.empty(); });
    return access;
}

std::string approveAgent(Call &call, const AgentRequest &request, const std::string &userId,
                         const std::vector<std::string> &workspaceIds)
{
    const std::string code = AgentGrants(call.database)
                                 .approve({.userId = userId,
                                           .clientId = request.client.id,
                                           .redirectUri = request.redirectUri,
                                           .challenge = request.challenge,
                                           .mayPropose = request.mayPropose,
                                           .workspaceIds = workspaceIds},
                                          call.now);
    return withState(withQueryItem(request.redirectUri, "code=" + code), request.state);
}

std::string refuseAgent(const AgentRequest &request)
{
    return withState(withQueryItem(request.redirectUri, "error=access_denied"), request.state);
}

void addAgentAuthorizationHandlers(Router &router)
{
    router.add<operations::PreviewAgentAuthorization>(preview);
    router.add<operations::AnswerAgentAuthorization>(answer);
}

} // namespace orvane::server
