// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentSignIn.h"

#include "Agents/AgentConsent.h"
#include "Agents/AgentGrants.h"
#include "Agents/AgentMessages.h"
#include "Agents/AgentUris.h"
#include "Http/Forms.h"
#include "Http/Problems.h"
#include "Requests/PathRoutes.h"

namespace orvane::server {

namespace {

HttpResponse badForm()
{
    return oauthFailed(400, {"invalid_request", "The body must be a form, each parameter once."});
}

Step describeResource(Call &call, const RequestParts &)
{
    return protectedResourceAnswer(call.address);
}

Step describeServer(Call &call, const RequestParts &)
{
    return authorizationServerAnswer(call.address);
}

Step registerAgent(Call &call, const RequestParts &parts)
{
    GuessGuard &guard = call.services.agentRegistrations;
    if (const auto wait = guard.wait(call.peer, call.now))
        return tooMany(*wait);
    auto client = readAgentRegistration(parts.body);
    if (!client)
        return oauthFailed(400, client.error());
    // Each leaves something behind, so each counts.
    if (const auto wait = guard.settle(call.peer, false, call.now))
        return tooMany(*wait);
    const auto id = AgentGrants(call.database).addClient(*client, call.now);
    if (!id)
        return problem(503, "Too many agents are registered.", "Sign some out first.");
    client->id = *id;
    client->createdAt = call.now;
    return agentRegistered(*client);
}

HttpResponse tokensOrRefusal(Call &call, const AgentGrants::Tokens &tokens)
{
    if (tokens)
        return agentTokensAnswer(*tokens);
    call.keepsChanges = true; // what ended stays ended
    if (!tokens.error().endedOf.empty())
        call.changedAccount(tokens.error().endedOf);
    return oauthFailed(400, {"invalid_grant", "This code or token is not valid, or no longer."});
}

HttpResponse exchangeCode(Call &call, const QueryPairs &form)
{
    const auto tokens = AgentGrants(call.database)
                            .exchange({.code = fieldOf(form, "code"),
                                       .clientId = fieldOf(form, "client_id"),
                                       .redirectUri = fieldOf(form, "redirect_uri"),
                                       .verifier = fieldOf(form, "code_verifier")},
                                      call.now);
    if (tokens)
        call.changedAccount(tokens->userId);
    return tokensOrRefusal(call, tokens);
}

HttpResponse renewTokens(Call &call, const QueryPairs &form)
{
    return tokensOrRefusal(call,
                           AgentGrants(call.database)
                               .renew(fieldOf(form, "refresh_token"), fieldOf(form, "client_id"), call.now));
}

Step token(Call &call, const RequestParts &parts)
{
    const auto form = formIn(parts);
    if (!form || hasTwice(*form, {"grant_type", "code", "client_id", "redirect_uri", "code_verifier",
                                  "refresh_token", "resource"}))
        return badForm();
    if (!AgentGrants(call.database).client(fieldOf(*form, "client_id")))
        return oauthFailed(401, {"invalid_client", "This agent is not registered here."});
    const std::string resource = fieldOf(*form, "resource");
    if (!resource.empty() && !isOurResource(call.address, resource))
        return oauthFailed(400, {"invalid_target", "This server has no such resource."});
    const std::string type = fieldOf(*form, "grant_type");
    if (type == "authorization_code")
        return exchangeCode(call, *form);
    if (type == "refresh_token")
        return renewTokens(call, *form);
    return oauthFailed(400, {"unsupported_grant_type", "Bring an authorization code or a refresh token."});
}

Step revoke(Call &call, const RequestParts &parts)
{
    const auto form = formIn(parts);
    if (!form || hasTwice(*form, {"token", "client_id"}))
        return badForm();
    // An unknown token is no news to whoever wants to be rid of it.
    if (const auto userId =
            AgentGrants(call.database).endByToken(fieldOf(*form, "token"), fieldOf(*form, "client_id")))
        call.changedAccount(*userId);
    return noBody(200);
}

} // namespace

HttpResponse agentSignInWanted(const std::string &address, bool hadToken)
{
    HttpResponse response = unauthorized("Sign in to Orvane first.");
    response.headers.set("WWW-Authenticate", "Bearer resource_metadata=\"" + address + resourcePath +
                                                 agentPath + "\"" +
                                                 (hadToken ? ", error=\"invalid_token\"" : ""));
    return response;
}

void addAgentSignInPaths(PathRoutes &paths)
{
    using enum HttpMethod;
    constexpr auto open = Router::Entrance::open;
    constexpr auto form = RequestGate::Body::form;
    for (const std::string &path : {std::string(resourcePath), std::string(resourcePath) + agentPath})
        paths.add(get, path, {.handle = describeResource, .entrance = open, .lane = Lane::reading});
    paths.add(get, serverMetadataPath, {.handle = describeServer, .entrance = open, .lane = Lane::reading});
    paths.add(post, registerPath, {.handle = registerAgent, .entrance = open});
    paths.add(post, tokenPath, {.handle = token, .entrance = open, .body = form});
    paths.add(post, revokePath, {.handle = revoke, .entrance = open, .body = form});
    paths.add(get, authorizePath, {.handle = showConsent, .entrance = open, .lane = Lane::reading});
    paths.add(post, authorizePath, {.handle = answerConsent, .entrance = open, .body = form});
}

} // namespace orvane::server
