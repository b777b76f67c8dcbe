// SPDX-License-Identifier: GPL-3.0-or-later
// The agents' protocol at our server, and who is let in. What the official client makes of it is for
// tests/npm/agent_client.mjs.
#include "McpFixture.h"

namespace orvane::server {

using namespace std::chrono_literals;

using McpTest = McpFixture;

TEST_F(McpTest, SpeaksTheVersionThatIsAskedForOrItsNewest)
{
    const auto answered = [&](const std::string &asked) {
        const QJsonObject answer =
            ask("initialize", R"({"protocolVersion": ")" + asked +
                                  R"(", "capabilities": {}, "clientInfo": {"name": "x"}})");
        const QJsonObject result = answer[QLatin1String("result")].toObject();
        EXPECT_EQ(textIn(result[QLatin1String("serverInfo")].toObject(), "name"), "orvane");
        EXPECT_TRUE(result[QLatin1String("capabilities")].toObject().contains(QLatin1String("tools")));
        return textIn(result, "protocolVersion");
    };
    EXPECT_EQ(answered("2025-06-18"), "2025-06-18");
    EXPECT_EQ(answered("2025-03-26"), "2025-03-26");
    EXPECT_EQ(answered("2031-01-01"), "2025-06-18");
    EXPECT_EQ(errorCode(ask("initialize")), -32602);

    HttpRequest other = post(R"({"jsonrpc": "2.0", "id": 1, "method": "ping"})");
    other.headers.set("MCP-Protocol-Version", "2024-11-05");
    EXPECT_EQ(send(other, token).status, 400);
    other.headers.set("MCP-Protocol-Version", "2025-06-18");
    EXPECT_EQ(send(other, token).status, 200);
}

TEST_F(McpTest, AnswersWhatIsNoRequestAsTheProtocolSays)
{
    struct Case {
        std::string body;
        int status = 0;
        int code = 0;
    };
    const std::vector<Case> cases{
        {"{", 400, -32700},
        {"\xff", 400, -32700},
        {"", 400, -32700},
        {R"("ping")", 400, -32600},
        {R"({"jsonrpc": "1.0", "id": 1, "method": "ping"})", 400, -32600},
        {R"({"jsonrpc": "2.0", "id": 1})", 400, -32600},
        {R"({"jsonrpc": "2.0", "id": 1.5, "method": "ping"})", 400, -32600},
        {R"({"jsonrpc": "2.0", "id": {}, "method": "ping"})", 400, -32600},
        {R"({"jsonrpc": "2.0", "id": 1, "id": 2, "method": "ping"})", 400, -32600},
        {R"({"jsonrpc": "2.0", "id": 1, "method": "ping", "params": [1]})", 400, -32602},
        {R"({"jsonrpc": "2.0", "id": 1, "method": "resources/list"})", 200, -32601},
        {R"({"jsonrpc": "2.0", "id": 1, "method": "tools/call"})", 200, -32602},
        {R"({"jsonrpc": "2.0", "id": 1, "method": "tools/call", "params": {"name": "delete_all"}})", 200,
         -32602},
        {R"({"jsonrpc": "2.0", "id": 1, "method": "tools/call", "params": {"name": "list_tags", "arguments": 5}})",
         200, -32602},
        {R"({"jsonrpc": "2.0", "id": "a\u0022b", "method": "ping"})", 200, 0},
        // What wants no answer gets none, whatever it says.
        {R"({"jsonrpc": "2.0", "method": "notifications/initialized"})", 202, 0},
        {R"({"jsonrpc": "2.0", "method": "tools/call", "params": {"name": "propose_entries"}})", 202, 0},
        {R"({"jsonrpc": "2.0", "id": 1, "result": {}})", 202, 0},
    };
    for (const auto &[body, status, code] : cases) {
        const HttpResponse response = tell(body);
        EXPECT_EQ(response.status, status) << body << response.body;
        EXPECT_EQ(errorCode(json(response)), code) << body;
        EXPECT_EQ(response.body.empty(), status == 202) << body;
    }
    EXPECT_EQ(textIn(json(tell(R"({"jsonrpc": "2.0", "id": "a\u0022b", "method": "ping"})")), "id"), "a\"b");
}

TEST_F(McpTest, TakesBatchesWhereTheVersionHasThem)
{
    const std::string batch = R"([{"jsonrpc": "2.0", "id": 1, "method": "ping"},
        {"jsonrpc": "2.0", "method": "notifications/initialized"}, 5,
        {"jsonrpc": "2.0", "id": 2, "method": "initialize", "params": {"protocolVersion": "2025-03-26"}},
        {"jsonrpc": "2.0", "id": 3, "method": "tools/call", "params": {"name": "propose_entries", "arguments": )" +
                              oneEntry() + "}}]";
    const HttpResponse response = tell(batch);
    EXPECT_EQ(response.status, 200);
    const QJsonArray answers = QJsonDocument::fromJson(QByteArray::fromStdString(response.body)).array();
    ASSERT_EQ(answers.size(), 4) << response.body;
    EXPECT_EQ(answers[0][QLatin1String("id")].toInt(), 1);
    EXPECT_EQ(errorCode(answers[1].toObject()), -32600);
    EXPECT_EQ(errorCode(answers[2].toObject()), -32600) << "initialize stands alone";
    EXPECT_FALSE(answers[3][QLatin1String("result")][QLatin1String("isError")].toBool(true));
    EXPECT_EQ(each(call("list_proposals"), "proposals", "status"), std::vector<std::string>{"pending"});

    HttpRequest newer = post(batch);
    newer.headers.set("MCP-Protocol-Version", "2025-06-18");
    EXPECT_EQ(send(newer, token).status, 400);
    EXPECT_EQ(tell("[]").status, 400);
    std::string many = "[1";
    for (std::size_t i = 0; i < mostMcpMessages; ++i)
        many += ",1";
    EXPECT_EQ(tell(many + "]").status, 400);
}

TEST_F(McpTest, IsBehindTheSameGatesAsAnyRequest)
{
    const std::string ping = R"({"jsonrpc": "2.0", "id": 1, "method": "ping"})";
    const auto with = [&](const char *name, const std::string &value) {
        HttpRequest request = post(ping);
        request.headers.set(name, value);
        return send(request, token).status;
    };
    EXPECT_EQ(with("Accept", "*/*"), 200);
    EXPECT_EQ(with("Accept", "text/html"), 406);
    EXPECT_EQ(with("Content-Type", "text/plain"), 415);
    EXPECT_EQ(with("Origin", "https://evil.example"), 403);
    EXPECT_EQ(with("Host", "evil.example"), 421);
    EXPECT_EQ(tell(std::string(longestBody + 1, ' ')).status, 413);
    for (const HttpMethod method : {HttpMethod::get, HttpMethod::delete_}) {
        const HttpResponse refused = send({method, "/mcp", {}, {}}, token);
        EXPECT_EQ(refused.status, 405) << "there are no streams and no sessions";
        EXPECT_EQ(refused.headers.find("Allow"), "POST");
    }
}

TEST_F(McpTest, OpensForAnAgentsTokenAlone)
{
    const std::string list = R"({"jsonrpc": "2.0", "id": 1, "method": "tools/list"})";
    for (const std::string &other : {std::string(), accessToken, token + "x"}) {
        const HttpResponse refused = send(post(list), other);
        EXPECT_EQ(refused.status, 401);
        EXPECT_TRUE(refused.headers.find("WWW-Authenticate")
                        .value_or("")
                        .contains("resource_metadata=\"http://" + host +
                                  "/.well-known/oauth-protected-resource/mcp\""));
    }
    EXPECT_EQ(send(post(list), token).status, 200);
    const auto sessions = agentSessions();
    ASSERT_EQ(sessions.size(), 1U);
    AgentFixture::call<operations::RevokeSession>({sessions[0].id});
    EXPECT_EQ(send(post(list), token).status, 401) << "the user signed it out";
    token = signAgentIn({workspaceId}).access;
    now += 1h;
    EXPECT_EQ(send(post(list), token).status, 401) << "it has to be renewed";
}

TEST_F(McpTest, HoldsBackAnAgentThatAsksInACircle)
{
    const std::string other = signAgentIn({workspaceId}).access;
    token = signAgentIn({workspaceId}).access;
    const std::string ping = R"({"jsonrpc": "2.0", "id": 1, "method": "ping"})";
    for (int i = 0; i < AgentPace::mostAtOnce; ++i)
        ASSERT_EQ(tell(ping).status, 200) << i;
    const HttpResponse slowed = tell(ping);
    EXPECT_EQ(slowed.status, 429);
    EXPECT_EQ(slowed.headers.find("Retry-After"), "1");
    now += 1s;
    EXPECT_EQ(tell(ping).status, 200);
    EXPECT_EQ(tell("[" + ping + "," + ping + "]").status, 429) << "each message of a batch counts";
    EXPECT_EQ(tell(ping).status, 200) << "what was refused did not";
    EXPECT_EQ(tell(ping).status, 429);
    now -= 30min;
    EXPECT_EQ(tell(ping).status, 429);
    now += 30s;
    EXPECT_EQ(tell(ping).status, 200) << "a clock that was put back keeps nobody out for long";
    token = other;
    EXPECT_EQ(tell(ping).status, 200) << "another agent has a pace of its own";
}

namespace {

/// Notes for what the database was asked.
class NotingExecutor : public Executor {
public:
    explicit NotingExecutor(Database &database) : m_inPlace(database) {}
    void transact(Lane lane, Transaction work) override
    {
        lanes.push_back(lane);
        m_inPlace.transact(lane, std::move(work));
    }
    bool compute(std::function<void()> work, std::function<void()> done) override
    {
        return m_inPlace.compute(std::move(work), std::move(done));
    }
    std::vector<Lane> lanes;

private:
    InPlaceExecutor m_inPlace;
};

} // namespace

TEST_F(McpTest, KeepsNoWriterBusyByReading)
{
    auto database = Database::connect(databasePath);
    ASSERT_TRUE(database);
    NotingExecutor executor(**database);
    const auto lanesOf = [&](const std::string &tool, const std::string &arguments,
                             const std::string &bearer) {
        executor.lanes.clear();
        HttpRequest request =
            post(R"({"jsonrpc": "2.0", "id": 1, "method": "tools/call", "params": {"name": ")" + tool +
                 R"(", "arguments": )" + arguments + "}}");
        request.headers.set("Host", host);
        request.headers.set("Authorization", "Bearer " + bearer);
        server->serve(request, peer, executor, [](const Served &) {});
        return executor.lanes;
    };
    EXPECT_EQ(tell(R"({"jsonrpc": "2.0", "id": 1, "method": "ping"})").status, 200) << "it was used just now";
    using Lanes = std::vector<Lane>;
    EXPECT_EQ(lanesOf("list_entries", "{}", token), Lanes{Lane::reading});
    EXPECT_EQ(lanesOf("propose_entries", oneEntry(), token), (Lanes{Lane::reading, Lane::writing}));
    EXPECT_EQ(lanesOf("propose_entries", oneEntry(), "nobody's"), Lanes{Lane::reading});
}

} // namespace orvane::server
