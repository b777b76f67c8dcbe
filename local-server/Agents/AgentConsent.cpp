// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentConsent.h"

#include "Agents/AgentPage.h"
#include "Http/Forms.h"
#include "Requests/Call.h"
#include "SignIn/PasswordCheck.h"

#include <algorithm>

namespace orvane::server {

namespace {

std::optional<std::string> optionalField(const QueryPairs &query, std::string_view name)
{
    std::string value = fieldOf(query, name);
    return value.empty() ? std::nullopt : std::optional(std::move(value));
}

OAuthAuthorizationRequest askedBy(const QueryPairs &query)
{
    OAuthAuthorizationRequest asked;
    asked.clientId = fieldOf(query, "client_id");
    asked.redirectUri = fieldOf(query, "redirect_uri");
    asked.responseType = fieldOf(query, "response_type");
    asked.codeChallenge = fieldOf(query, "code_challenge");
    asked.codeChallengeMethod = fieldOf(query, "code_challenge_method");
    asked.state = optionalField(query, "state");
    asked.scope = optionalField(query, "scope");
    asked.resource = optionalField(query, "resource");
    return asked;
}

/// As long as the API takes them, so that every way of answering takes the same requests.
bool isBounded(const OAuthAuthorizationRequest &asked)
{
    constexpr std::size_t longest = 2000;
    constexpr std::size_t longestScope = 1000;
    return asked.clientId.size() <= longest && asked.redirectUri.size() <= longest &&
           asked.state.value_or("").size() <= longest && asked.resource.value_or("").size() <= longest &&
           asked.scope.value_or("").size() <= longestScope;
}

HttpResponse overPage()
{
    return agentProblemPage(404, "This page is too old, or was answered already.", {});
}

HttpResponse faultPage(const AgentRequestFault &fault)
{
    return agentProblemPage(400, fault.sentence, fault.redirectUri);
}

HttpResponse askForWorkspaces(Call &call, const AgentRequest &request, const OAuthAuthorizationRequest &asked,
                              const AccountRecord &account, const std::string &problem)
{
    const std::string attempt = call.services.agentAttempts.open({asked, account.id}, call.now);
    return workspacesPage(problem.empty() ? 200 : 400, {request, asked, attempt}, account.email,
                          workspacesToGive(call, account.id), problem);
}

/// What a password came to that was given on the page of `name`.
HttpResponse signedIn(Call &call, const std::string &name, const PasswordOutcome &outcome)
{
    const auto attempt = call.services.agentAttempts.find(name, call.now);
    if (!attempt)
        return overPage();
    const auto request = checkAgentRequest(call, attempt->request);
    if (!request)
        return faultPage(request.error());
    const ConsentPage again{*request, attempt->request, name};
    if (const auto *slowed = std::get_if<GuessesSlowed>(&outcome))
        return consentPage(429, again,
                           "Too many attempts. Try again in " + std::to_string(slowed->wait.count()) +
                               " seconds.");
    const auto *account = std::get_if<AccountRecord>(&outcome);
    if (!account)
        return consentPage(401, again, "The e-mail address or the password is wrong.");
    if (!call.services.agentAttempts.close(name, call.now))
        return overPage();
    return askForWorkspaces(call, *request, attempt->request, *account, {});
}

/// The user's own ones of those that were marked.
std::vector<std::string> chosenWorkspaces(Call &call, const QueryPairs &form, const std::string &userId)
{
    std::vector<std::string> chosen;
    for (const auto &[name, value] : form) {
        if (name == "workspace" && call.workspaces.role(value, userId))
            chosen.push_back(value);
    }
    return chosen;
}

HttpResponse allow(Call &call, const QueryPairs &form, const AgentAttempts::Attempt &attempt,
                   const AgentRequest &request)
{
    const auto account = call.accounts.byId(attempt.userId);
    if (!account)
        return overPage();
    const auto chosen = chosenWorkspaces(call, form, account->id);
    if (chosen.empty())
        return askForWorkspaces(call, request, attempt.request, *account, "Choose a workspace.");
    return backToAgent(approveAgent(call, request, account->id, chosen));
}

} // namespace

Step showConsent(Call &call, const RequestParts &parts)
{
    if (hasTwice(parts.query, {"client_id", "redirect_uri", "response_type", "code_challenge",
                               "code_challenge_method", "state", "scope", "resource"}))
        return agentProblemPage(400, "The agent’s request says something twice.", {});
    const OAuthAuthorizationRequest asked = askedBy(parts.query);
    if (!isBounded(asked))
        return agentProblemPage(400, "The agent’s request is too long.", {});
    const auto request = checkAgentRequest(call, asked);
    if (!request)
        return faultPage(request.error());
    const std::string attempt = call.services.agentAttempts.open({asked, {}}, call.now);
    return consentPage(200, {*request, asked, attempt}, {});
}

Step answerConsent(Call &call, const RequestParts &parts)
{
    const auto form = formIn(parts);
    const std::string name = form ? fieldOf(*form, "attempt") : std::string();
    const std::string step = form ? fieldOf(*form, "step") : std::string();
    const auto attempt = call.services.agentAttempts.find(name, call.now);
    if (!attempt)
        return overPage();
    if (step == "sign-in" && attempt->userId.empty())
        return checkPassword(
            call, {fieldOf(*form, "email"), fieldOf(*form, "password")},
            [name](Call &later, const PasswordOutcome &outcome) { return signedIn(later, name, outcome); });
    const bool allows = step == "allow" && !attempt->userId.empty();
    if (!allows && step != "refuse")
        return agentProblemPage(400, "What was sent is none of the answers.", {});
    const auto request = checkAgentRequest(call, attempt->request);
    if (!request)
        return faultPage(request.error());
    if (!call.services.agentAttempts.close(name, call.now))
        return overPage();
    return allows ? allow(call, *form, *attempt, *request) : backToAgent(refuseAgent(*request));
}

} // namespace orvane::server
