// SPDX-License-Identifier: GPL-3.0-or-later
// Who may come to the hub, and what is told there.
#include "HubFixture.h"
#include "OrvaneAPI/LinkProof.h"

namespace orvane::server {

using namespace operations;
using namespace std::chrono_literals;
using orvane::testing::eventually;

class Hub : public HubFixture {
protected:
    /// Another user, in place of the first one.
    struct Other {
        std::string token;
        std::string workspaceId;
        std::string userId;
    };
    Other registerOther()
    {
        const std::string own = accessToken;
        Other other{registerAccount().accessToken, {}, {}};
        const MeResponse described = me();
        other.workspaceId = described.defaultWorkspaceId.value_or("");
        other.userId = described.id;
        accessToken = own;
        return other;
    }
    std::string withToken(const std::string &ticket) const { return head(address(ticket, accessToken)); }
};

TEST_F(Hub, ANegotiationIsAnsweredAsClientsOfTheProtocolExpect)
{
    const HttpResponse response = askToNegotiate(accessToken);
    const std::string id = memberOf(response.body, "connectionId");
    const std::string ticket = memberOf(response.body, "connectionToken");
    EXPECT_EQ(response.body,
              R"({"negotiateVersion":1,"connectionId":")" + id + R"(","connectionToken":")" + ticket +
                  R"(","availableTransports":[{"transport":"WebSockets","transferFormats":["Text"]}]})");
    EXPECT_GE(ticket.size(), 43U);
    EXPECT_NE(negotiate(accessToken).connectionId, id);
    EXPECT_EQ(askToNegotiate("").status, 401);
    EXPECT_EQ(askToNegotiate(accessToken, "").status, 400);
    EXPECT_EQ(askToNegotiate(accessToken, "?negotiateVersion=0").status, 400);
    EXPECT_EQ(send({HttpMethod::get, hubNegotiatePath, {}, {}}, accessToken).status, 405);

    HttpRequest proved{HttpMethod::post, std::string(hubNegotiatePath) + "?negotiateVersion=1", {}, {}};
    proved.headers.set("Authorization", "Bearer " + accessToken);
    const std::string nonce = newProofNonce();
    proved.headers.set(linkProofHeader, requestProof(linkKey, nonce, proved));
    EXPECT_TRUE(isAnswerProved(linkKey, nonce, send(proved)));
}

TEST_F(Hub, ATicketIsGoodOnceForThirtySecondsAndItsOwnSession)
{
    const std::string used = negotiate(accessToken).connectionToken;
    EXPECT_EQ(statusOf(withToken(used)), 101);
    EXPECT_EQ(statusOf(withToken(used)), 404);
    const std::string old = negotiate(accessToken).connectionToken;
    now += 30s;
    EXPECT_EQ(statusOf(withToken(old)), 404);
    const std::string first = negotiate(accessToken).connectionToken;
    const std::string second = negotiate(accessToken).connectionToken;
    for (int i = 0; i < 63; ++i)
        negotiate(accessToken);
    EXPECT_EQ(statusOf(withToken(first)), 404) << "of many unused ones the oldest goes";
    EXPECT_EQ(statusOf(withToken(second)), 101);
    const std::string mine = negotiate(accessToken).connectionToken;
    signInLocally();
    EXPECT_EQ(statusOf(withToken(mine)), 404) << "another session of the same user";
}

TEST_F(Hub, WhatMayNotPassGetsNoHandshake)
{
    const auto ticket = [this] { return address(negotiate(accessToken).connectionToken); };
    const std::string bearer = "Authorization: Bearer " + accessToken + "\r\n";
    EXPECT_EQ(statusOf(head(ticket(), bearer)), 101);
    EXPECT_EQ(statusOf(head(ticket(), bearer + "Origin: http://" + host + "\r\n")), 101);
    EXPECT_EQ(statusOf(head(ticket(), bearer + "Origin: http://evil.example\r\n")), 403);
    EXPECT_EQ(statusOf(head(ticket(), bearer + "Origin: null\r\n")), 403);
    EXPECT_EQ(statusOf(head(ticket())), 401);
    EXPECT_EQ(statusOf(head(ticket(), bearer + "Orvane-Proof: v1.a.b\r\n")), 401);
    EXPECT_EQ(statusOf(head(address("made-up"), bearer)), 404);
    EXPECT_EQ(statusOf(head(hubPath, bearer)), 404);
    EXPECT_EQ(statusOf(head(std::string(hubPath) + "?id=%zz", bearer)), 400);
    EXPECT_EQ(statusOf(head(ticket(), bearer + bearer)), 400) << "which of the two is meant?";
    EXPECT_EQ(statusOf(head(ticket(), bearer + "Content-Length: 5\r\n")), 400);
    EXPECT_EQ(statusOf("GET " + ticket() + " HTTP/1.1\r\nHost: " + host + "\r\n" + bearer + "\r\n"), 426);
    EXPECT_EQ(statusOf(head(ticket(), bearer + "X: " + std::string(20'000, 'x') + "\r\n")), 400);
    std::string elsewhere = head(ticket(), bearer);
    elsewhere.replace(elsewhere.find("127.0.0.1"), 9, "evil.test");
    EXPECT_EQ(statusOf(elsewhere), 421);
}

TEST_F(Hub, ASessionThatIsBoundComesWithItsProofAlone)
{
    const std::string verifier = randomText(32);
    ExternalExchangeRequest body;
    body.code = server->localSignInCode(digestText(verifier), "UTC").value_or("");
    body.codeVerifier = verifier;
    const auto proved = [this](HttpRequest request) {
        request.headers.set(linkProofHeader, requestProof(linkKey, newProofNonce(), request));
        return request;
    };
    const auto tokens =
        decodeJson<ExternalSignInResponse>(send(proved(ExchangeExternalSignIn::request({body}))).body);
    const std::string bound = tokens.value().tokens.accessToken;
    HttpRequest negotiation{HttpMethod::post, std::string(hubNegotiatePath) + "?negotiateVersion=1", {}, {}};
    EXPECT_EQ(send(negotiation, bound).status, 401);
    negotiation.headers.set("Authorization", "Bearer " + bound);
    const std::string ticket = memberOf(send(proved(negotiation)).body, "connectionToken");
    const HttpRequest upgrade = proved({HttpMethod::get, address(ticket, bound), {}, {}});
    EXPECT_EQ(statusOf(head(upgrade.path)), 401);
    EXPECT_EQ(
        statusOf(head(upgrade.path, "Orvane-Proof: " + *upgrade.headers.find(linkProofHeader) + "\r\n")),
        101);
}

TEST_F(Hub, TheDoorIsFoundHoweverTheRequestComes)
{
    QTcpSocket slow;
    slow.connectToHost(QHostAddress::LocalHost, port);
    ASSERT_TRUE(slow.waitForConnected());
    const std::string request = withToken(negotiate(accessToken).connectionToken);
    for (const char byte : request) {
        slow.write(&byte, 1);
        slow.flush();
        QCoreApplication::processEvents();
    }
    EXPECT_EQ(statusFrom(slow), 101);
    QTcpSocket kept;
    kept.connectToHost(QHostAddress::LocalHost, port);
    kept.write("GET /api/hubs/synchrony HTTP/1.1\r\nHost: x\r\n\r\n");
    QByteArray answer;
    EXPECT_TRUE(eventually([&] { return (answer += kept.readAll()).endsWith("plain"); }));
    kept.write(QByteArray::fromStdString(withToken(negotiate(accessToken).connectionToken)));
    EXPECT_EQ(statusFrom(kept), 101) << "behind another request";
    EXPECT_TRUE(eventually([&] { return !hub->isEmpty(); }));
    slow.abort();
    kept.abort();
    EXPECT_TRUE(eventually([&] { return hub->isEmpty(); }));
}

TEST_F(Hub, WatchersHearOfTheirWorkspaceAlone)
{
    const Other other = registerOther();
    const auto watcher = watching(accessToken, workspaceId);
    const auto idle = connectHub(accessToken);
    const auto stranger = watching(other.token, other.workspaceId);
    stranger->invoke("Watch", workspaceId, "2");
    EXPECT_TRUE(stranger->hears(1));
    EXPECT_EQ(stranger->heardByNow(),
              std::vector<std::string>{R"({"type":3,"invocationId":"2","result":false})"});

    addTag("one");
    CreateTimeEntryRequest entry;
    entry.id = "a";
    entry.start = now - 1h;
    entry.stop = now;
    call<CreateTimeEntry>({workspaceId, entry});
    call<UpdateProfile>({{"Ada", "UTC"}});
    EXPECT_EQ(watcher->heardByNow(),
              (std::vector{changed("catalog", workspaceId, ""), changed("time-entries", workspaceId, userId),
                           changed("me", "", userId)}));
    EXPECT_EQ(idle->heardByNow(), std::vector{changed("me", "", userId)}) << "a user's own need no watch";
    EXPECT_EQ(stranger->heardByNow(), std::vector<std::string>{});

    watcher->invoke("Unwatch", workspaceId, {});
    watcher->heardByNow();
    addTag("two");
    EXPECT_EQ(watcher->heardByNow(), std::vector<std::string>{});
}

TEST_F(Hub, TheConnectionThatMadeAChangeIsNotToldOfIt)
{
    const Other other = registerOther();
    const auto mine = watching(accessToken, workspaceId);
    const auto second = watching(accessToken, workspaceId);
    addTag("one", mine->connectionId);
    EXPECT_EQ(mine->heardByNow(), std::vector<std::string>{});
    EXPECT_EQ(second->heardByNow().size(), 1U);
    addTag("two", connectHub(other.token)->connectionId);
    addTag("three", "made up");
    EXPECT_EQ(mine->heardByNow().size(), 2U);
    // Somebody else's connection is none of one's own to silence.
    hub->tell({{{ChangeTopic::catalog, workspaceId, {}}}, other.userId, mine->connectionId});
    EXPECT_EQ(mine->heardByNow().size(), 1U);
}

TEST_F(Hub, TheEndOfASessionIsTheEndOfItsConnections)
{
    const std::string first = accessToken;
    const auto stays = connectHub(first);
    const std::string refresh = signInLocally().tokens.refreshToken;
    const auto loggedOut = connectHub(accessToken);
    call<Logout>({{refresh}});
    ASSERT_TRUE(loggedOut->isClosed());
    EXPECT_EQ(loggedOut->heard.back(),
              R"({"type":7,"error":"Your session has ended.","allowReconnect":false})");

    const std::string stolen = signInLocally().tokens.refreshToken;
    const auto robbed = connectHub(accessToken);
    const auto next = decodeJson<AuthTokensResponse>(call<RefreshTokens>({{stolen}}).body);
    call<RefreshTokens>({{next.value().refreshToken}});
    EXPECT_EQ(call<RefreshTokens>({{stolen}}).status, 401) << "an old token shows that there is a copy";
    EXPECT_TRUE(robbed->isClosed());

    signInLocally();
    const auto revoked = connectHub(accessToken);
    accessToken = first;
    call<RevokeOtherSessions>({});
    EXPECT_TRUE(revoked->isClosed());
    EXPECT_EQ(stays->heardByNow(), std::vector(3, changed("me", "", userId)));

    EXPECT_EQ(call<DeleteAccount>({{me().email, {}}}).status, 204);
    EXPECT_TRUE(stays->isClosed());
    EXPECT_TRUE(eventually([&] { return hub->isEmpty(); }));
}

TEST_F(Hub, WhatIsLostWithoutAWordIsNoticedWithinAMinute)
{
    const Other other = registerOther();
    const auto member = watching(accessToken, workspaceId);
    database->begin();
    database->run("DELETE FROM workspace_members WHERE workspace_id = ?", workspaceId);
    ASSERT_TRUE(database->commit());
    steady += 60s;
    member->heardByNow();
    hub->keepAlive();
    hub->tell({{{ChangeTopic::catalog, workspaceId, {}}}, {}, {}});
    EXPECT_EQ(member->heardByNow(), std::vector<std::string>{R"({"type":6})"}) << "the workspace";

    const auto expiring = connectHub(other.token);
    now += std::chrono::days(61);
    steady += 60s;
    expiring->heardByNow();
    hub->keepAlive();
    EXPECT_TRUE(expiring->isClosed()) << "the session";
}

} // namespace orvane::server
