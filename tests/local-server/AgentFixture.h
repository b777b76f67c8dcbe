// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/AgentGrants.h"
#include "OrvaneAPI/UriText.h"
#include "ServerFixture.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <initializer_list>
#include <regex>
#include <utility>

namespace orvane::server {

/// An agent, as far as it signs in: by plain HTTP, as its own program would.
class AgentFixture : public ServerFixture {
protected:
    AgentFixture()
    {
        // In a file, so that a test can look a token up as the agents' tools do.
        openServer({}, {}, folder.path().toStdString() + "/server.db");
    }

    using Fields = std::vector<std::pair<std::string, std::string>>;
    static std::string form(const Fields &fields)
    {
        std::string text;
        for (const auto &[name, value] : fields)
            text += (text.empty() ? "" : "&") + name + "=" + percentEncoded(value);
        return text;
    }
    HttpResponse postForm(const std::string &path, const Fields &fields, const std::string &origin = {})
    {
        HttpRequest request{HttpMethod::post, path, {}, form(fields)};
        request.headers.set("Content-Type", "application/x-www-form-urlencoded");
        if (!origin.empty())
            request.headers.set("Origin", origin);
        return send(std::move(request));
    }
    HttpResponse postJson(const std::string &path, const std::string &body)
    {
        HttpRequest request{HttpMethod::post, path, {}, body};
        request.headers.set("Content-Type", "application/json");
        return send(std::move(request));
    }
    HttpResponse get(const std::string &path) { return send({HttpMethod::get, path, {}, {}}); }
    static QJsonObject json(const HttpResponse &response)
    {
        return QJsonDocument::fromJson(QByteArray::fromStdString(response.body)).object();
    }
    static std::string textIn(const QJsonObject &object, const char *name)
    {
        return object[QLatin1String(name)].toString().toStdString();
    }
    static std::string firstMatch(const std::string &text, const std::string &pattern)
    {
        std::smatch found;
        return std::regex_search(text, found, std::regex(pattern)) ? found[1].str() : std::string();
    }

    std::string registerAgent(const std::string &name = "Claude Code",
                              const std::string &home = "http://127.0.0.1:40000/callback")
    {
        const HttpResponse response = postJson(
            "/oauth/register", R"({"client_name": ")" + name + R"(", "redirect_uris": [")" + home +
                                   R"("], "token_endpoint_auth_method": "none", "something": "else"})");
        EXPECT_EQ(response.status, 201) << response.body;
        return textIn(json(response), "client_id");
    }
    OAuthAuthorizationRequest authorization(const std::string &clientId) const
    {
        OAuthAuthorizationRequest request;
        request.clientId = clientId;
        request.redirectUri = redirect;
        request.responseType = "code";
        request.codeChallenge = digestText(verifier);
        request.codeChallengeMethod = "S256";
        request.resource = "http://" + host + "/mcp";
        request.state = "a state&b";
        return request;
    }
    /// What the signed-in user's answer comes to.
    HttpResponse answer(const OAuthAuthorizationRequest &request, std::vector<std::string> workspaceIds,
                        bool isApproved = true)
    {
        return call<operations::AnswerAgentAuthorization>({{request, isApproved, std::move(workspaceIds)}});
    }
    std::string codeFrom(const HttpResponse &answered)
    {
        const std::string address = textIn(json(answered), "redirectUri");
        EXPECT_TRUE(address.starts_with(redirect + "?code=")) << answered.body;
        EXPECT_TRUE(address.ends_with("&state=a%20state%26b")) << address;
        return firstMatch(address, "code=([\\w-]+)");
    }
    HttpResponse exchange(const std::string &clientId, const std::string &code, Fields others = {})
    {
        Fields fields{{"grant_type", "authorization_code"},
                      {"client_id", clientId},
                      {"code", code},
                      {"redirect_uri", redirect},
                      {"code_verifier", verifier}};
        for (auto &[name, value] : others) {
            const auto found = std::ranges::find(fields, name, &Fields::value_type::first);
            found == fields.end() ? void(fields.emplace_back(name, value)) : void(found->second = value);
        }
        return postForm("/oauth/token", fields);
    }
    HttpResponse refresh(const std::string &clientId, const std::string &token)
    {
        return postForm("/oauth/token", {{"grant_type", "refresh_token"},
                                         {"client_id", clientId},
                                         {"refresh_token", token},
                                         {"resource", "http://" + host + "/mcp"}});
    }

    struct Signed {
        std::string clientId, access, refresh;
    };
    static Signed tokensIn(const std::string &clientId, const HttpResponse &response)
    {
        EXPECT_EQ(response.status, 200) << response.body;
        EXPECT_EQ(textIn(json(response), "token_type"), "Bearer");
        EXPECT_EQ(json(response)[QLatin1String("expires_in")].toInt(), 3600);
        return {clientId, textIn(json(response), "access_token"), textIn(json(response), "refresh_token")};
    }
    /// The user that is signed in lets an agent into these workspaces, all of the user's when there are none.
    Signed signAgentIn(std::vector<std::string> workspaceIds = {})
    {
        if (workspaceIds.empty())
            workspaceIds = {me().defaultWorkspaceId.value_or("")};
        const std::string clientId = registerAgent();
        return tokensIn(clientId,
                        exchange(clientId, codeFrom(answer(authorization(clientId), workspaceIds))));
    }
    /// What a token opens for an agent.
    std::optional<AgentAccess> access(const std::string &token)
    {
        auto database = Database::connect(databasePath);
        EXPECT_TRUE(database);
        (*database)->begin(Lane::reading);
        auto admission = AgentGrants(**database).admit(token, now);
        EXPECT_TRUE((*database)->commit());
        return admission ? std::optional(std::move(admission->access)) : std::nullopt;
    }
    std::vector<SessionResponse> agentSessions()
    {
        auto sessions = expect<operations::ListSessions, Ok<std::vector<SessionResponse>>>({}).body;
        std::erase_if(sessions, [](const SessionResponse &session) { return !session.agent; });
        return sessions;
    }

    QTemporaryDir folder;
    const std::string verifier = randomText(32);
    std::string redirect = "http://127.0.0.1:51234/callback";
};

} // namespace orvane::server
