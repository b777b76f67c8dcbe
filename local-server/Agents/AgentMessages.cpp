// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentMessages.h"

#include "Agents/AgentSignIn.h"
#include "Agents/AgentUris.h"
#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Support/JsonImpl.h"

#include <QString>
#include <algorithm>

namespace orvane::server {

/// As RFC 7591 has it.
struct AgentRegistrationBody {
    std::vector<std::string> redirectUris;
    std::optional<std::string> clientName;
    std::optional<std::string> clientUri;
    std::optional<std::vector<std::string>> grantTypes;
    std::optional<std::vector<std::string>> responseTypes;
};

struct AgentRegistrationAnswer {
    std::string clientId;
    std::int64_t clientIdIssuedAt = 0;
    std::string clientName;
    std::optional<std::string> clientUri;
    std::vector<std::string> redirectUris;
    std::vector<std::string> grantTypes{"authorization_code", "refresh_token"};
    std::vector<std::string> responseTypes{"code"};
    std::string authMethod = "none";
};

struct AgentTokensBody {
    std::string accessToken;
    std::string tokenType = "Bearer";
    std::int64_t expiresIn = 0;
    std::string refreshToken;
    std::string scope;
};

/// As RFC 9728 has it.
struct ProtectedResourceBody {
    std::string resource;
    std::string resourceName = "Orvane";
    std::vector<std::string> authorizationServers;
    std::vector<std::string> scopesSupported = scopesOf(true);
    std::vector<std::string> bearerMethodsSupported{"header"};
};

/// As RFC 8414 has it.
struct AuthorizationServerBody {
    std::string issuer;
    std::string authorizationEndpoint;
    std::string tokenEndpoint;
    std::string registrationEndpoint;
    std::string revocationEndpoint;
    std::vector<std::string> scopesSupported = scopesOf(true);
    std::vector<std::string> responseTypesSupported{"code"};
    std::vector<std::string> responseModesSupported{"query"};
    std::vector<std::string> grantTypesSupported{"authorization_code", "refresh_token"};
    std::vector<std::string> authMethodsSupported{"none"};
    std::vector<std::string> codeChallengeMethodsSupported{"S256"};
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::OAuthFault> {
    static constexpr auto list =
        JsonFieldList{jsonField<"error">(&server::OAuthFault::error),
                      jsonField<"error_description">(&server::OAuthFault::description)};
};

template <>
struct JsonFields<server::AgentRegistrationBody> {
    using T = server::AgentRegistrationBody;
    static constexpr auto list =
        JsonFieldList{jsonField<"redirect_uris">(&T::redirectUris), jsonField<"client_name">(&T::clientName),
                      jsonField<"client_uri">(&T::clientUri), jsonField<"grant_types">(&T::grantTypes),
                      jsonField<"response_types">(&T::responseTypes)};
};

template <>
struct JsonFields<server::AgentRegistrationAnswer> {
    using T = server::AgentRegistrationAnswer;
    static constexpr auto list = JsonFieldList{jsonField<"client_id">(&T::clientId),
                                               jsonField<"client_id_issued_at">(&T::clientIdIssuedAt),
                                               jsonField<"client_name">(&T::clientName),
                                               jsonField<"client_uri">(&T::clientUri),
                                               jsonField<"redirect_uris">(&T::redirectUris),
                                               jsonField<"grant_types">(&T::grantTypes),
                                               jsonField<"response_types">(&T::responseTypes),
                                               jsonField<"token_endpoint_auth_method">(&T::authMethod)};
};

template <>
struct JsonFields<server::AgentTokensBody> {
    using T = server::AgentTokensBody;
    static constexpr auto list =
        JsonFieldList{jsonField<"access_token">(&T::accessToken), jsonField<"token_type">(&T::tokenType),
                      jsonField<"expires_in">(&T::expiresIn), jsonField<"refresh_token">(&T::refreshToken),
                      jsonField<"scope">(&T::scope)};
};

template <>
struct JsonFields<server::ProtectedResourceBody> {
    using T = server::ProtectedResourceBody;
    static constexpr auto list =
        JsonFieldList{jsonField<"resource">(&T::resource), jsonField<"resource_name">(&T::resourceName),
                      jsonField<"authorization_servers">(&T::authorizationServers),
                      jsonField<"scopes_supported">(&T::scopesSupported),
                      jsonField<"bearer_methods_supported">(&T::bearerMethodsSupported)};
};

template <>
struct JsonFields<server::AuthorizationServerBody> {
    using T = server::AuthorizationServerBody;
    static constexpr auto list =
        JsonFieldList{jsonField<"issuer">(&T::issuer),
                      jsonField<"authorization_endpoint">(&T::authorizationEndpoint),
                      jsonField<"token_endpoint">(&T::tokenEndpoint),
                      jsonField<"registration_endpoint">(&T::registrationEndpoint),
                      jsonField<"revocation_endpoint">(&T::revocationEndpoint),
                      jsonField<"scopes_supported">(&T::scopesSupported),
                      jsonField<"response_types_supported">(&T::responseTypesSupported),
                      jsonField<"response_modes_supported">(&T::responseModesSupported),
                      jsonField<"grant_types_supported">(&T::grantTypesSupported),
                      jsonField<"token_endpoint_auth_methods_supported">(&T::authMethodsSupported),
                      jsonField<"code_challenge_methods_supported">(&T::codeChallengeMethodsSupported)};
};

} // namespace orvane

ORVANE_JSON(orvane::server::OAuthFault)
ORVANE_JSON(orvane::server::AgentRegistrationBody)
ORVANE_JSON(orvane::server::AgentRegistrationAnswer)
ORVANE_JSON(orvane::server::AgentTokensBody)
ORVANE_JSON(orvane::server::ProtectedResourceBody)
ORVANE_JSON(orvane::server::AuthorizationServerBody)

namespace orvane::server {

namespace {

constexpr std::size_t longestRegistration = std::size_t{16} << 10U;
constexpr std::size_t mostRedirects = 10;
constexpr std::size_t longestAgentName = 100;

tl::unexpected<OAuthFault> metadataFault(std::string description)
{
    return failure(OAuthFault{"invalid_client_metadata", std::move(description)});
}

/// What is left out stands for the one that is used here.
bool leavesOut(const std::optional<std::vector<std::string>> &types, std::string_view wanted)
{
    return types && std::ranges::find(*types, wanted) == types->end();
}

/// It is shown to people who decide by it, so nothing in it may hide or turn what stands around it.
bool isShownAsItIs(const std::string &name)
{
    return name.size() <= longestAgentName &&
           std::ranges::all_of(QString::fromStdString(name).toUcs4(), [](char32_t c) {
               return QChar::isPrint(c) && c != QChar::LineSeparator && c != QChar::ParagraphSeparator;
           });
}

} // namespace

std::string scopeText(bool mayPropose)
{
    return std::string(readScope) + (mayPropose ? " " + std::string(proposeScope) : "");
}

std::vector<std::string> scopesOf(bool mayPropose)
{
    std::vector<std::string> scopes{std::string(readScope)};
    if (mayPropose)
        scopes.emplace_back(proposeScope);
    return scopes;
}

std::optional<bool> asksToPropose(std::string_view scope)
{
    bool names = false;
    bool proposes = false;
    while (!scope.empty()) {
        const std::size_t end = std::min(scope.find(' '), scope.size());
        const std::string_view one = scope.substr(0, end);
        scope.remove_prefix(std::min(end + 1, scope.size()));
        if (one.empty())
            continue;
        if (one != readScope && one != proposeScope)
            return std::nullopt;
        names = true;
        proposes = proposes || one == proposeScope;
    }
    return proposes || !names;
}

HttpResponse oauthFailed(int status, const OAuthFault &fault)
{
    return jsonAnswer(status, fault);
}

Result<AgentClient, OAuthFault> readAgentRegistration(std::string_view body)
{
    if (body.size() > longestRegistration)
        return metadataFault("The description is too long.");
    auto read = decodeJson<AgentRegistrationBody>(body);
    if (!read)
        return metadataFault(read.error().path.empty() ? "The body must be a JSON object."
                                                       : read.error().path + ": " + read.error().message);
    if (read->redirectUris.empty() || read->redirectUris.size() > mostRedirects ||
        !std::ranges::all_of(read->redirectUris, isRedirectUri))
        return failure(OAuthFault{"invalid_redirect_uri",
                                  "Give one to ten addresses: https, or http of a loopback address."});
    if (leavesOut(read->grantTypes, "authorization_code") || leavesOut(read->responseTypes, "code"))
        return metadataFault("An agent signs in by an authorization code.");
    const std::string name = trimmed(read->clientName.value_or(""));
    if (!name.empty() && !isShownAsItIs(name))
        return metadataFault("client_name must be at most 100 bytes of characters that can be seen.");
    if (read->clientUri && !isRedirectUri(*read->clientUri))
        return metadataFault("client_uri must be an https address.");
    return AgentClient{.id = {},
                       .name = name.empty() ? "An agent without a name" : name,
                       .uri = std::move(read->clientUri),
                       .redirectUris = std::move(read->redirectUris),
                       .createdAt = {}};
}

HttpResponse agentRegistered(const AgentClient &client)
{
    AgentRegistrationAnswer answer;
    answer.clientId = client.id;
    answer.clientIdIssuedAt = millisecondsSinceEpoch(client.createdAt) / 1000;
    answer.clientName = client.name;
    answer.clientUri = client.uri;
    answer.redirectUris = client.redirectUris;
    return jsonAnswer(201, answer);
}

HttpResponse agentTokensAnswer(const AgentTokens &tokens)
{
    AgentTokensBody body;
    body.accessToken = tokens.access;
    body.expiresIn = std::chrono::seconds(AgentGrants::accessLifetime).count();
    body.refreshToken = tokens.refresh;
    body.scope = scopeText(tokens.mayPropose);
    return jsonAnswer(200, body);
}

HttpResponse protectedResourceAnswer(const std::string &address)
{
    ProtectedResourceBody body;
    body.resource = address + agentPath;
    body.authorizationServers = {address};
    return jsonAnswer(200, body);
}

HttpResponse authorizationServerAnswer(const std::string &address)
{
    AuthorizationServerBody body;
    body.issuer = address;
    body.authorizationEndpoint = address + authorizePath;
    body.tokenEndpoint = address + tokenPath;
    body.registrationEndpoint = address + registerPath;
    body.revocationEndpoint = address + revokePath;
    return jsonAnswer(200, body);
}

} // namespace orvane::server
