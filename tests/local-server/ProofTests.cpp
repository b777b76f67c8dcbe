// SPDX-License-Identifier: GPL-3.0-or-later
// Requests that carry a proof, and what becomes of tokens that were got by one.
#include "OrvaneAPI/LinkProof.h"
#include "ServerFixture.h"

#include <QTemporaryDir>

namespace orvane::server {

class Proof : public ServerFixture {
protected:
    /// As it is sent to the port by one who has the key.
    HttpRequest proved(HttpRequest request, const std::string &token = {})
    {
        if (!token.empty())
            request.headers.set("Authorization", "Bearer " + token);
        request.headers.set(linkProofHeader, requestProof(linkKey, nonce, request));
        return request;
    }
    AuthTokensResponse signIn(bool withProof)
    {
        const std::string verifier = randomText(32);
        ExternalExchangeRequest body;
        body.code = server->localSignInCode(digestText(verifier), "UTC").value_or("");
        body.codeVerifier = verifier;
        const HttpRequest request = operations::ExchangeExternalSignIn::request({body});
        const auto answer =
            decodeJson<ExternalSignInResponse>(send(withProof ? proved(request) : request).body);
        EXPECT_TRUE(answer);
        return answer ? answer->tokens : AuthTokensResponse{};
    }
    static HttpRequest me() { return operations::GetMe::request({}); }
    static HttpRequest refresh(const std::string &token)
    {
        return operations::RefreshTokens::request({{token}});
    }

    std::string nonce = newProofNonce();
};

TEST_F(Proof, IsAnsweredByOne)
{
    const HttpResponse answer = send(proved(me(), signIn(true).accessToken));
    EXPECT_EQ(answer.status, 200);
    EXPECT_TRUE(isAnswerProved(linkKey, nonce, answer));
    EXPECT_FALSE(isAnswerProved(randomText(32), nonce, answer));
    EXPECT_FALSE(isAnswerProved(linkKey, newProofNonce(), answer));
    for (const auto &change : std::initializer_list<std::function<void(HttpResponse &)>>{
             [](HttpResponse &forged) { forged.status = 204; },
             [](HttpResponse &forged) { forged.body += ' '; },
             [](HttpResponse &forged) { forged.headers.set(linkProofHeader, ""); },
             [](HttpResponse &forged) { forged.headers = {}; }}) {
        HttpResponse forged = answer;
        change(forged);
        EXPECT_FALSE(isAnswerProved(linkKey, nonce, forged));
    }
    // A refusal is the server's word too; who proves nothing gets no proof.
    EXPECT_TRUE(isAnswerProved(linkKey, nonce, send(proved(me(), "no token"))));
    EXPECT_FALSE(send(me()).headers.find(linkProofHeader));
}

TEST_F(Proof, VouchesForTheWholeRequest)
{
    const std::string token = signIn(true).accessToken;
    HttpRequest good = operations::CreateTag::request({"w", {.name = "Deep work"}});
    good.headers.set("If-Match", "1");
    good = proved(good, token);
    EXPECT_EQ(send(good).status, 404) << "it got as far as the workspace that is not there";
    const auto proofOf = [](const HttpRequest &request) {
        return request.headers.find(linkProofHeader).value_or("");
    };
    for (const auto &change : std::initializer_list<std::function<void(HttpRequest &)>>{
             [](HttpRequest &request) { request.method = HttpMethod::put; },
             [](HttpRequest &request) { request.path += "?a=b"; },
             [](HttpRequest &request) { request.body += ' '; },
             [](HttpRequest &request) { request.headers.set("Authorization", "Bearer other"); },
             [](HttpRequest &request) { request.headers.set("If-Match", "2"); },
             [&](HttpRequest &request) {
                 request.headers.set(linkProofHeader, requestProof(randomText(32), nonce, request));
             },
             [&](HttpRequest &request) {
                 request.headers.set(linkProofHeader, requestProof("", nonce, request));
             },
             [&](HttpRequest &request) {
                 request.headers.set(linkProofHeader,
                                     proofOf(request).substr(0, proofOf(request).size() - 1));
             },
             [](HttpRequest &request) { request.headers.set(linkProofHeader, "v1."); },
             [](HttpRequest &request) { request.headers.set(linkProofHeader, ""); }}) {
        HttpRequest changed = good;
        change(changed);
        const HttpResponse answer = send(changed);
        EXPECT_EQ(answer.status, 401) << proofOf(changed);
        EXPECT_FALSE(answer.headers.find(linkProofHeader));
    }
}

TEST_F(Proof, TokensGotByOneAreGoodWithOneOnly)
{
    const AuthTokensResponse bound = signIn(true);
    EXPECT_EQ(send(me(), bound.accessToken).status, 401);
    EXPECT_EQ(send(refresh(bound.refreshToken)).status, 401);
    // Nobody else can end the session either.
    EXPECT_EQ(send(operations::Logout::request({{bound.refreshToken}})).status, 202);
    EXPECT_EQ(send(proved(me(), bound.accessToken)).status, 200);

    const auto renewed = decodeJson<AuthTokensResponse>(send(proved(refresh(bound.refreshToken))).body);
    ASSERT_TRUE(renewed);
    EXPECT_EQ(send(me(), renewed->accessToken).status, 401);
    EXPECT_EQ(send(refresh(renewed->refreshToken)).status, 401);
    EXPECT_EQ(send(proved(me(), renewed->accessToken)).status, 200);
    EXPECT_EQ(send(proved(operations::Logout::request({{renewed->refreshToken}}))).status, 202);
    EXPECT_EQ(send(proved(me(), renewed->accessToken)).status, 401);
}

TEST_F(Proof, IsNotAskedOfWhoSignedInWithoutOne)
{
    const AuthTokensResponse plain = signIn(false);
    EXPECT_EQ(send(me(), plain.accessToken).status, 200);
    EXPECT_EQ(send(proved(me(), plain.accessToken)).status, 200);
    EXPECT_EQ(send(refresh(plain.refreshToken)).status, 200);
}

TEST_F(Proof, IsNotAskedOfASessionFromBeforeThereWereProofs)
{
    const QTemporaryDir folder;
    databasePath = folder.filePath(QStringLiteral("server.sqlite")).toStdString();
    openServer({});
    const AuthTokensResponse tokens = signIn(true);
    server.reset();
    {
        // The tables as the first version had them.
        const auto database = Database::open(databasePath);
        ASSERT_TRUE(database) << database.error();
        (*database)->begin();
        (*database)->runOnce("ALTER TABLE sessions DROP COLUMN is_bound");
        const auto later = (*database)->rows(
            "SELECT name FROM sqlite_master WHERE type = 'table' AND rowid > (SELECT rowid FROM "
            "sqlite_master WHERE name = 'deleted_entries') ORDER BY rowid DESC",
            [](const SqlRow &row) { return row.text(0); });
        for (const std::string &name : later)
            (*database)->runOnce("DROP TABLE " + name);
        (*database)->run("UPDATE schema_version SET version = 1");
        ASSERT_TRUE((*database)->commit()) << (*database)->lastError();
    }
    openServer({});
    EXPECT_EQ(send(me(), tokens.accessToken).status, 200);
    EXPECT_EQ(send(refresh(tokens.refreshToken)).status, 200);
    // A new one is bound.
    EXPECT_EQ(send(me(), signIn(true).accessToken).status, 401);
}

TEST_F(Proof, IsWorthNothingWhereThereIsNoKey)
{
    linkKey.clear();
    openServer({});
    EXPECT_EQ(send(proved(operations::GetServer::request({}))).status, 401);
    EXPECT_EQ(send(operations::GetServer::request({})).status, 200);
}

} // namespace orvane::server
