// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentFixture.h"
#include "Agents/AgentUris.h"

namespace orvane::server {

using namespace std::chrono_literals;

/// What an agent's program and the one that asks the user do over HTTP.
class AgentSignInTest : public AgentFixture {
protected:
    std::string otherWorkspace()
    {
        CreateWorkspaceRequest body;
        body.name = "Side work";
        body.organizationId = me().organizations.at(0).id;
        return expect<operations::CreateWorkspace, Created<WorkspaceSummary>>({body}).body.id;
    }
    static std::string errorOf(const HttpResponse &response) { return textIn(json(response), "error"); }
};

TEST_F(AgentSignInTest, FindsTheWayByTheAddressItAskedAt)
{
    host = "localhost:0";
    for (const char *path :
         {"/.well-known/oauth-protected-resource", "/.well-known/oauth-protected-resource/mcp"}) {
        const auto resource = json(get(path));
        EXPECT_EQ(textIn(resource, "resource"), "http://localhost:0/mcp");
        EXPECT_EQ(resource[QLatin1String("authorization_servers")].toArray(),
                  QJsonArray{QStringLiteral("http://localhost:0")});
    }
    const auto metadata = json(get("/.well-known/oauth-authorization-server"));
    EXPECT_EQ(textIn(metadata, "issuer"), "http://localhost:0");
    EXPECT_EQ(textIn(metadata, "authorization_endpoint"), "http://localhost:0/oauth/authorize");
    EXPECT_EQ(textIn(metadata, "token_endpoint"), "http://localhost:0/oauth/token");
    EXPECT_EQ(textIn(metadata, "registration_endpoint"), "http://localhost:0/oauth/register");
    EXPECT_EQ(metadata[QLatin1String("code_challenge_methods_supported")].toArray(),
              QJsonArray{QStringLiteral("S256")});
    EXPECT_EQ(postJson("/.well-known/oauth-authorization-server", "{}").status, 405);
    host = "orvane.example";
    EXPECT_EQ(get("/.well-known/oauth-authorization-server").status, 421) << "a name of somebody else's";
}

TEST_F(AgentSignInTest, SpeaksOfItselfAsItsProxyIsKnown)
{
    openServer({}, "10.0.0.9");
    peer = "10.0.0.9";
    HttpRequest request{HttpMethod::get, "/.well-known/oauth-protected-resource", {}, {}};
    request.headers.set("X-Forwarded-Host", "time.example.org");
    EXPECT_EQ(textIn(json(send(request)), "resource"), "https://time.example.org/mcp");
    request.headers.set("X-Forwarded-Proto", "http");
    EXPECT_EQ(textIn(json(send(request)), "resource"), "http://time.example.org/mcp");
    request.headers.set("X-Forwarded-Host", "evil\"quote");
    EXPECT_EQ(textIn(json(send(request)), "resource"), "http://127.0.0.1:0/mcp");
    publicAddress = "https://known.example.org";
    openServer({}, "10.0.0.9");
    EXPECT_EQ(textIn(json(send(request)), "resource"), "https://known.example.org/mcp");
    peer = "127.0.0.1";
    EXPECT_EQ(textIn(json(send(request)), "resource"), "http://127.0.0.1:0/mcp") << "asked here, not there";
}

TEST_F(AgentSignInTest, RegistersWhatItCanShowAndSendBackTo)
{
    const auto registered = json(postJson(
        "/oauth/register", R"({"redirect_uris": ["http://localhost:1/cb", "https://agent.example/cb"]})"));
    EXPECT_FALSE(textIn(registered, "client_id").empty());
    EXPECT_EQ(textIn(registered, "token_endpoint_auth_method"), "none");
    const std::string tooMany = [] {
        std::string list;
        for (int i = 0; i < 11; ++i)
            list += std::string(i ? "," : "") + "\"https://agent.example/" + std::to_string(i) + "\"";
        return list;
    }();
    for (const std::string &redirects :
         {std::string(), std::string(R"("http://agent.example/cb")"), std::string("\"javascript:alert\""),
          std::string(R"("agent://cb")"), std::string(R"("https://user@agent.example/cb")"),
          std::string(R"("https://agent.example/cb#part")"), std::string(R"("https://agent.example/a b")"),
          std::string(R"("http://127.0.0.1.agent.example/cb")"), tooMany}) {
        const auto refused = postJson("/oauth/register", R"({"redirect_uris": [)" + redirects + "]}");
        EXPECT_EQ(refused.status, 400) << redirects;
        EXPECT_EQ(errorOf(refused), "invalid_redirect_uri") << redirects;
    }
    for (const std::string &name :
         {std::string("a\\u202eb"), std::string("a\\u0007"), std::string(101, 'a')}) {
        const auto refused = postJson("/oauth/register", R"({"redirect_uris": ["https://agent.example/cb"],)"
                                                         R"("client_name": ")" +
                                                             name + "\"}");
        EXPECT_EQ(errorOf(refused), "invalid_client_metadata") << name;
    }
    EXPECT_EQ(errorOf(postJson("/oauth/register", "[]")), "invalid_client_metadata");
    EXPECT_EQ(errorOf(postJson("/oauth/register", std::string(20'000, ' '))), "invalid_client_metadata");
}

TEST_F(AgentSignInTest, SlowsDownWhoRegistersOnAndOn)
{
    for (int i = 0; i < 20; ++i)
        (void)registerAgent();
    const auto slowed = postJson("/oauth/register", R"({"redirect_uris": ["https://agent.example/cb"]})");
    EXPECT_EQ(slowed.status, 429);
    EXPECT_TRUE(slowed.headers.find("Retry-After"));
    peer = "10.0.0.7";
    (void)registerAgent();
}

TEST_F(AgentSignInTest, GetsTokensThatOpenTheToolsAlone)
{
    (void)signInLocally();
    const std::string clientId = registerAgent();
    OAuthAuthorizationRequest request = authorization(clientId);
    const auto preview =
        expect<operations::PreviewAgentAuthorization, Ok<OAuthAuthorizationPreview>>({request}).body;
    EXPECT_EQ(preview.clientName, "Claude Code");
    EXPECT_EQ(preview.redirectHost, "127.0.0.1:51234");
    EXPECT_EQ(preview.scopes, (std::vector<std::string>{"time:read", "time:propose"}));
    ASSERT_EQ(preview.organizations.size(), 1U);
    ASSERT_EQ(preview.organizations[0].workspaces.size(), 1U);
    EXPECT_EQ(preview.organizations[0].workspaces[0].id, workspaceId);
    changes.clear();
    const Signed agent = tokensIn(clientId, exchange(clientId, codeFrom(answer(request, {workspaceId}))));
    EXPECT_EQ(changes, (std::vector<Change>{{ChangeTopic::me, {}, me().id}})) << "its list has one more";

    const auto opened = access(agent.access);
    ASSERT_TRUE(opened);
    EXPECT_EQ(opened->userId, me().id);
    EXPECT_EQ(opened->agentName, "Claude Code");
    EXPECT_EQ(opened->workspaceIds, std::vector<std::string>{workspaceId});
    EXPECT_TRUE(opened->mayPropose);
    for (const std::string &other : {accessToken, agent.refresh, std::string(), std::string("x")})
        EXPECT_FALSE(access(other)) << "only an agent's access token opens the tools";
    for (const std::string &token : {agent.access, agent.refresh}) {
        EXPECT_EQ(send(operations::GetMe::request({}), token).status, 401);
        HttpRequest negotiate{HttpMethod::post, "/api/hubs/sync/negotiate?negotiateVersion=1", {}, {}};
        EXPECT_EQ(send(negotiate, token).status, 401);
        std::optional<int> admitted;
        auto database = Database::connect(databasePath);
        ASSERT_TRUE(database);
        InPlaceExecutor executor(**database);
        HttpRequest upgrade{HttpMethod::get, "/api/hubs/sync?id=x&access_token=" + token, {}, {}};
        upgrade.headers.set("Host", host);
        server->admitToHub(upgrade, peer, executor, [&](const ServerCore::Admission &admission) {
            admitted = admission ? 200 : admission.error().status;
        });
        EXPECT_EQ(admitted, 401);
        EXPECT_EQ(postJson("/api/auth/refresh", R"({"refreshToken": ")" + token + "\"}").status, 401);
    }
    now += 1h;
    EXPECT_FALSE(access(agent.access)) << "over after an hour";
}

TEST_F(AgentSignInTest, ReachesTheWorkspacesThatItWasGiven)
{
    (void)registerAccount();
    const std::string first = me().defaultWorkspaceId.value_or("");
    const std::string second = otherWorkspace();
    const Signed agent = signAgentIn({second});
    ASSERT_TRUE(access(agent.access));
    EXPECT_EQ(access(agent.access)->workspaceIds, std::vector<std::string>{second});
    const std::string clientId = registerAgent();
    EXPECT_EQ(answer(authorization(clientId), {}).status, 400);
    (void)signInLocally();
    EXPECT_EQ(answer(authorization(clientId), {second}).status, 403) << "somebody else's";
    const auto refused = json(answer(authorization(clientId), {}, false));
    EXPECT_EQ(textIn(refused, "redirectUri"), redirect + "?error=access_denied&state=a%20state%26b");
}

TEST_F(AgentSignInTest, AsksForNothingButWhatThereIs)
{
    (void)signInLocally();
    const std::string clientId = registerAgent();
    const auto faults = [&](auto change) {
        OAuthAuthorizationRequest request = authorization(clientId);
        change(request);
        const HttpResponse refused = call<operations::PreviewAgentAuthorization>({request});
        EXPECT_EQ(refused.status, 400);
        EXPECT_EQ(answer(request, {workspaceId}).status, 400);
        const auto errors = fieldErrors(refused);
        return errors.empty() ? std::string() : errors.begin()->first;
    };
    using Request = OAuthAuthorizationRequest;
    EXPECT_EQ(faults([](Request &r) { r.clientId = "nobody"; }), "clientId");
    EXPECT_EQ(faults([](Request &r) { r.redirectUri = "http://127.0.0.1:51234/elsewhere"; }), "redirectUri");
    EXPECT_EQ(faults([](Request &r) { r.redirectUri = "https://127.0.0.1:51234/callback"; }), "redirectUri");
    EXPECT_EQ(faults([](Request &r) { r.responseType = "token"; }), "responseType");
    EXPECT_EQ(faults([](Request &r) { r.codeChallengeMethod = "plain"; }), "codeChallenge");
    EXPECT_EQ(faults([](Request &r) { r.resource = "https://tools.example/mcp"; }), "resource");
    EXPECT_EQ(faults([](Request &r) { r.scope = "time:read admin"; }), "scope");

    Request reading = authorization(clientId);
    reading.scope = "time:read";
    reading.resource = "http://localhost:0/mcp"; // this computer by its other name
    const Signed agent = tokensIn(clientId, exchange(clientId, codeFrom(answer(reading, {workspaceId}))));
    ASSERT_TRUE(access(agent.access));
    EXPECT_FALSE(access(agent.access)->mayPropose);
}

TEST_F(AgentSignInTest, CodesAreGoodOnceForAMinuteAndForWhomTheyAreMade)
{
    (void)signInLocally();
    const std::string clientId = registerAgent();
    const auto code = [&] { return codeFrom(answer(authorization(clientId), {workspaceId})); };
    const std::string another = registerAgent("Codex");
    EXPECT_EQ(errorOf(exchange(another, code())), "invalid_grant");
    for (const auto &[name, value] : Fields{{"code_verifier", randomText(32)},
                                            {"redirect_uri", "http://127.0.0.1:51235/callback"},
                                            {"code", "made-up"}})
        EXPECT_EQ(errorOf(exchange(clientId, code(), {{name, value}})), "invalid_grant") << name;
    EXPECT_EQ(errorOf(exchange(clientId, code(), {{"resource", "https://tools.example/mcp"}})),
              "invalid_target");
    EXPECT_EQ(exchange("nobody", code()).status, 401);
    EXPECT_EQ(errorOf(exchange(clientId, code(), {{"grant_type", "password"}})), "unsupported_grant_type");

    const std::string guessed = code();
    EXPECT_EQ(exchange(clientId, guessed, {{"code_verifier", randomText(32)}}).status, 400);
    EXPECT_EQ(exchange(clientId, guessed).status, 400) << "spent by the attempt on it";
    const std::string late = code();
    now += 60s;
    EXPECT_EQ(exchange(clientId, late).status, 400);
    EXPECT_TRUE(agentSessions().empty()) << "nothing is left of what never came to tokens";

    const std::string good = code();
    now += 59s;
    const Signed agent = tokensIn(clientId, exchange(clientId, good));
    ASSERT_TRUE(access(agent.access));
    EXPECT_EQ(exchange(clientId, good).status, 400);
    EXPECT_FALSE(access(agent.access)) << "who shows a code twice had it from somewhere";
}

TEST_F(AgentSignInTest, RefreshTokensRotateAndATheftEndsThem)
{
    (void)signInLocally();
    const Signed first = signAgentIn();
    const Signed second = tokensIn(first.clientId, refresh(first.clientId, first.refresh));
    EXPECT_TRUE(access(first.access)) << "another of the agent's programs may be using it";
    const Signed repeated = tokensIn(first.clientId, refresh(first.clientId, first.refresh));
    EXPECT_TRUE(access(repeated.access)) << "the answer was lost on the way";
    EXPECT_EQ(refresh(registerAgent("Codex"), repeated.refresh).status, 400);
    const Signed third = tokensIn(first.clientId, refresh(first.clientId, repeated.refresh));
    EXPECT_EQ(errorOf(refresh(first.clientId, third.access)), "invalid_grant");
    ASSERT_TRUE(access(third.access));
    EXPECT_EQ(errorOf(refresh(first.clientId, first.refresh)), "invalid_grant")
        << "spent before the last one";
    EXPECT_FALSE(access(third.access)) << "the grant is over";
    EXPECT_EQ(refresh(first.clientId, third.refresh).status, 400);
    now += 24h * 61;
    (void)signInLocally();
    EXPECT_TRUE(agentSessions().empty());
}

TEST_F(AgentSignInTest, StandsAmongTheSessionsAndEndsLikeOne)
{
    (void)registerAccount();
    const std::string workspace = me().defaultWorkspaceId.value_or("");
    const Signed agent = signAgentIn();
    const auto listed = agentSessions();
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(listed[0].deviceName, "Claude Code");
    EXPECT_EQ(listed[0].agent->clientId, agent.clientId);
    EXPECT_EQ(listed[0].agent->organizations.at(0).workspaces.at(0).id, workspace);
    EXPECT_FALSE(listed[0].agent->lastUsedAt);

    const auto revoke = [&](const std::string &clientId, const std::string &token) {
        return postForm("/oauth/revoke", {{"token", token}, {"client_id", clientId}}).status;
    };
    EXPECT_EQ(revoke("another", agent.refresh), 200);
    EXPECT_TRUE(access(agent.access)) << "a token is nobody else's to end";
    EXPECT_EQ(revoke(agent.clientId, agent.refresh), 200);
    EXPECT_FALSE(access(agent.access));

    const Signed again = signAgentIn();
    const std::string mine = accessToken;
    (void)registerAccount("ada@example.org");
    const std::string id = access(again.access)->grantId;
    EXPECT_EQ(call<operations::RevokeSession>({id}).status, 404) << "somebody else's";
    accessToken = mine;
    EXPECT_EQ(call<operations::RevokeSession>({id}).status, 204);
    EXPECT_FALSE(access(again.access));
    const Signed last = signAgentIn();
    EXPECT_EQ(call<operations::RevokeOtherSessions>({}).status, 204);
    EXPECT_FALSE(access(last.access));
}

TEST(AgentUris, TakeTheNamesOfThisComputerForEachOther)
{
    const std::string ours = "http://127.0.0.1:4711";
    for (const char *resource :
         {"http://127.0.0.1:4711/mcp", "http://localhost:4711/mcp", "http://[::1]:4711/mcp",
          "http://127.0.0.1:4711", "http://127.0.0.1:4711/", "http://127.0.0.1:4711/mcp/"})
        EXPECT_TRUE(isOurResource(ours, resource)) << resource;
    for (const char *resource :
         {"http://127.0.0.1:4712/mcp", "https://127.0.0.1:4711/mcp", "http://10.0.0.1:4711/mcp", "/mcp", "",
          "http://127.0.0.1:4711/mcp?a", "http://a@127.0.0.1:4711/mcp", "http://127.0.0.1:4711/other"})
        EXPECT_FALSE(isOurResource(ours, resource)) << resource;
    EXPECT_TRUE(isOurResource("https://time.example.org", "https://time.example.org:443/mcp"));
    EXPECT_FALSE(isOurResource("https://time.example.org", "https://other.example.org/mcp"));
    EXPECT_TRUE(isRegisteredRedirect("http://[::1]:1/cb", "http://[::1]:2/cb"));
    EXPECT_FALSE(isRegisteredRedirect("http://127.0.0.1:1/cb", "http://127.0.0.1:2/cb?x=1"));
    EXPECT_FALSE(isRegisteredRedirect("https://agent.example:1/cb", "https://agent.example:2/cb"));
    EXPECT_EQ(withQueryItem("http://127.0.0.1:1/cb?a=b", "code=x"), "http://127.0.0.1:1/cb?a=b&code=x");
}

} // namespace orvane::server
