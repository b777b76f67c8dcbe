// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentAuthorization.h"
#include "OrvaneAPI/HttpMessage.h"
#include "OrvaneAPI/Schemas.h"

#include <string>
#include <vector>

/// The pages on which a person lets an agent in: plain, without a script, whole in themselves. Pure
/// functions.
namespace orvane::server {

/// A page's request and the name of its attempt, which its forms send along.
struct ConsentPage {
    const AgentRequest &request;
    const OAuthAuthorizationRequest &asked;
    const std::string &attempt;
};

/// Who asks for what, with the ways to answer. `problem` is a sentence about the last one tried; empty at
/// first.
HttpResponse consentPage(int status, const ConsentPage &page, const std::string &problem);
/// Which workspaces, once `account` has signed in on the page.
HttpResponse workspacesPage(int status, const ConsentPage &page, const std::string &account,
                            const std::vector<OrganizationAccess> &organizations, const std::string &problem);
/// That something is wrong; `back` is where the agent can be told so, or empty.
HttpResponse agentProblemPage(int status, const std::string &sentence, const std::string &back);
/// Takes the browser to the agent, with a page for one that does not follow.
HttpResponse backToAgent(const std::string &address);

/// "orvane://agents/authorize" with the request, for the program of whoever is signed in on this computer.
std::string programLink(const OAuthAuthorizationRequest &asked);
std::string htmlText(std::string_view text);

} // namespace orvane::server
