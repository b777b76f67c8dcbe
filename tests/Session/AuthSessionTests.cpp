// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/AuthSession.h"

#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "Outbox/OutboxRules.h"
#include "Session/MemoryTokenStore.h"
#include "Session/Pkce.h"
#include "support/Await.h"
#include "support/FaultProxy.h"
#include "support/TokenServer.h"

#include <QFile>
#include <QSaveFile>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using testing::await;
using testing::LoopbackServer;
using testing::SeenRequest;
using testing::TokenServer;

/// A store that several sessions share as processes share a keychain.
class FileTokenStore final : public TokenStore {
public:
    explicit FileTokenStore(QString folder) : m_folder(std::move(folder)) {}

    Task<StoredToken> read(std::string account) override
    {
        QFile file(path(account));
        if (!file.open(QIODevice::ReadOnly))
            co_return StoredToken(std::nullopt);
        co_return StoredToken(file.readAll().toStdString());
    }
    Task<> write(std::string value, std::string account) override
    {
        QSaveFile file(path(account));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray::fromStdString(value));
        EXPECT_TRUE(file.commit());
        co_return;
    }
    Task<> remove(std::string account) override
    {
        QFile::remove(path(account));
        co_return;
    }

private:
    QString path(const std::string &account) const
    {
        return m_folder + QLatin1Char('/') + QString::fromLatin1(QByteArray::fromStdString(account).toHex());
    }
    QString m_folder;
};

class AuthSessionTest : public ::testing::Test {
protected:
    AuthSessionOptions options(const std::string &url)
    {
        AuthSessionOptions result;
        result.server = url;
        result.tokenStore = store;
        result.deviceName = "the test's machine";
        result.now = [this] { return now.load(); };
        return result;
    }
    void open(const std::string &url)
    {
        session = AuthSession::make(*thread, options(url));
        client = std::make_unique<OrvaneClient>(thread, session);
    }
    void openSignedIn()
    {
        open(server.url());
        await(store->write(server.issue().refreshToken, server.url()));
    }
    std::optional<std::string> stored() { return await(store->read(server.url())).value(); }
    CallResult<std::vector<TagResponse>> request() { return await(client->listTags("w")); }
    static Instant systemNow()
    {
        return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    }

    TokenServer server;
    std::atomic<Instant> now = systemNow();
    std::shared_ptr<TokenStore> store = std::make_shared<MemoryTokenStore>();
    std::shared_ptr<NetworkThread> thread = std::make_shared<NetworkThread>();
    std::shared_ptr<AuthSession> session;
    std::unique_ptr<OrvaneClient> client;
};

std::int64_t statusOf(const CallError &error)
{
    const auto *refusal = std::get_if<APIError>(&error);
    return refusal ? refusal->status : 0;
}

TEST_F(AuthSessionTest, SignsInAndKeepsTheRefreshToken)
{
    open(server.url() + "/");
    EXPECT_FALSE(await(session->hasCredentials()));
    ASSERT_TRUE(await(session->login("a@example.org", "right")));
    EXPECT_EQ(stored(), "r1");
    const auto sent = decodeJson<LoginRequest>(server.requests().front().body);
    EXPECT_EQ(sent->deviceName, "the test's machine");
    EXPECT_EQ(*await(session->validAccessToken()), "a1");
    RegisterRequest account;
    account.email = "b@example.org";
    account.password = "long enough";
    ASSERT_TRUE(await(session->registerAccount(account)));
    EXPECT_EQ(stored(), "r2");
    const auto isNew = await(session->exchangeExternalSignIn("code", Pkce::make().verifier));
    ASSERT_TRUE(isNew);
    EXPECT_TRUE(*isNew);
    EXPECT_EQ(stored(), "r3");
    EXPECT_EQ(*await(session->validAccessToken()), "a3");
    EXPECT_EQ(server.refreshes(), 0);
}

TEST_F(AuthSessionTest, ShowsWhyASignInWasRefused)
{
    open(server.url());
    const auto result = await(session->login("a@example.org", "wrong"));
    ASSERT_FALSE(result);
    EXPECT_EQ(describe(result.error()), "Wrong password");
    EXPECT_FALSE(stored());
}

TEST_F(AuthSessionTest, FailsWithoutAsking)
{
    open(server.url());
    const auto answer = request();
    ASSERT_FALSE(answer);
    EXPECT_EQ(answer.error(), CallError(sessionEndedError()));
    EXPECT_TRUE(server.requests().empty());
}

TEST_F(AuthSessionTest, RenewsATokenWithinAMinuteOfItsEnd)
{
    openSignedIn();
    server.setLifetime(1000s);
    const Instant before = systemNow();
    ASSERT_TRUE(request());
    const Instant after = systemNow();
    EXPECT_EQ(server.refreshes(), 1);
    now = before + 1000s - 61s;
    ASSERT_TRUE(request());
    EXPECT_EQ(server.refreshes(), 1);
    now = after + 1000s - 59s;
    ASSERT_TRUE(request());
    EXPECT_EQ(server.refreshes(), 2);
    EXPECT_EQ(stored(), "r3");
}

TEST_F(AuthSessionTest, RenewsOnceForManyRequests)
{
    openSignedIn();
    server.setRefreshDelay(50ms);
    std::vector<Task<CallResult<std::vector<TagResponse>>>> calls;
    for (int i = 0; i < 10; ++i)
        calls.push_back(client->listTags("w"));
    for (auto &call : calls)
        EXPECT_TRUE(await(std::move(call)));
    EXPECT_EQ(server.refreshes(), 1);
    EXPECT_EQ(server.count("/api/workspaces/w/tags"), 10);
}

TEST_F(AuthSessionTest, SendsTheBodyAgainAfterARefusedToken)
{
    openSignedIn();
    server.setAnswer([](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.answer(201, R"({"id":"t","workspaceId":"w","name":"Deep work"})");
    });
    ASSERT_TRUE(await(session->validAccessToken()));
    server.revokeAccessTokens();
    const auto tag = await(client->createTag("w", {.name = "Deep work"}));
    ASSERT_TRUE(tag) << describe(tag.error());
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 4U);
    EXPECT_EQ(requests[1].body, requests[3].body);
    EXPECT_EQ(requests[1].headers.find("authorization"), "Bearer a2");
    EXPECT_EQ(requests[3].headers.find("authorization"), "Bearer a3");
}

TEST_F(AuthSessionTest, TakesTheTokenThatAnotherRequestRenewed)
{
    openSignedIn();
    ASSERT_TRUE(request());
    // Both get a 401 for the same token, the second only when the first has renewed it.
    server.setAnswer([this](const SeenRequest &request, LoopbackServer::Connection &connection) {
        const bool old = request.headers.find("authorization") == "Bearer a2";
        while (old && request.path.ends_with("slow/tags") && server.refreshes() < 2 && connection.wait(2ms)) {
        }
        if (old)
            connection.answer(401, "");
        else
            connection.answer(200, "[]");
    });
    auto slow = client->listTags("slow");
    auto quick = client->listTags("w");
    EXPECT_TRUE(await(std::move(quick)));
    EXPECT_TRUE(await(std::move(slow)));
    EXPECT_EQ(server.refreshes(), 2);
}

TEST_F(AuthSessionTest, LetsASecondRefusalStand)
{
    openSignedIn();
    server.setAnswer([](const SeenRequest &, LoopbackServer::Connection &connection) {
        connection.answer(401, R"({"title":"Not you"})");
    });
    const auto answer = request();
    ASSERT_FALSE(answer);
    EXPECT_EQ(describe(answer.error()), "Not you");
    EXPECT_EQ(server.refreshes(), 2);
    EXPECT_EQ(server.count("/api/workspaces/w/tags"), 2);
    EXPECT_TRUE(stored());
}

TEST_F(AuthSessionTest, EndsWhenTheRefreshTokenIsRefused)
{
    openSignedIn();
    await(store->write("another server's", "https://else.example"));
    server.revokeRefreshTokens();
    const auto answer = request();
    ASSERT_FALSE(answer);
    EXPECT_EQ(statusOf(answer.error()), 401);
    EXPECT_FALSE(stored());
    EXPECT_EQ(await(store->read("https://else.example")), "another server's");

    // It ended before anybody listened, and is told all the same; once.
    int ends = 0;
    QObject context;
    session->onSessionEnded(&context, [&] { ++ends; });
    EXPECT_TRUE(testing::eventually([&] { return ends == 1; }));
    await(store->write("r99", server.url()));
    EXPECT_FALSE(request());
    EXPECT_TRUE(testing::eventually([&] { return ends == 2; }));
}

TEST_F(AuthSessionTest, KeepsEverythingWhileTheServerIsAway)
{
    testing::FaultProxy proxy(server.url());
    open(proxy.url());
    await(store->write(server.issue().refreshToken, proxy.url()));
    proxy.setDown(true);
    const auto answer = request();
    ASSERT_FALSE(answer);
    EXPECT_TRUE(std::holds_alternative<ConnectionError>(answer.error()));
    EXPECT_EQ(await(store->read(proxy.url())), "r1");

    proxy.setDown(false);
    // None of these is a refusal of the token, nor one of the request.
    using testing::Fault;
    std::vector<Fault> troubles{Fault::garbageBody()};
    for (const int status : {400, 403, 404, 408, 409, 429, 503})
        troubles.push_back(Fault::answer(status));
    proxy.setPlan(testing::plans::inOrder(troubles));
    for (const Fault &trouble : troubles) {
        const auto refused = request();
        ASSERT_FALSE(refused) << trouble.status;
        EXPECT_NE(statusOf(refused.error()), 401) << trouble.status;
        EXPECT_EQ(classify(refused.error()), FailureKind::transient) << trouble.status;
    }
    EXPECT_EQ(await(store->read(proxy.url())), "r1");
    EXPECT_TRUE(request());
}

TEST_F(AuthSessionTest, WaitsForASilentStore)
{
    struct Stalling final : TokenStore {
        MemoryTokenStore inner;
        /// Which read gets no answer, counted from the next one; 0 for none.
        int silent = 0;
        Task<StoredToken> read(std::string account) override
        {
            if (silent > 0 && --silent == 0)
                co_return failure(StoreSilence{});
            co_return co_await inner.read(std::move(account));
        }
        Task<> write(std::string value, std::string account) override
        {
            return inner.write(std::move(value), std::move(account));
        }
        Task<> remove(std::string account) override { return inner.remove(std::move(account)); }
    };
    const auto stalling = std::make_shared<Stalling>();
    store = stalling;
    openSignedIn();
    int ends = 0;
    QObject context;
    session->onSessionEnded(&context, [&] { ++ends; });
    const auto fails = [&](int read) {
        stalling->silent = read;
        const auto answer = request();
        EXPECT_TRUE(!answer && std::holds_alternative<ConnectionError>(answer.error()));
    };
    fails(1);
    EXPECT_EQ(server.refreshes(), 0);
    EXPECT_TRUE(request());
    // The token is refused, and whether another process has renewed meanwhile cannot be told.
    server.revokeAccessTokens();
    server.revokeRefreshTokens();
    fails(2);
    EXPECT_EQ(stored(), "r2");
    stalling->silent = 1;
    EXPECT_FALSE(await(session->signOut()));
    EXPECT_EQ(server.count("/api/auth/logout"), 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(ends, 0);
}

TEST_F(AuthSessionTest, SignsOut)
{
    open(server.url());
    EXPECT_TRUE(await(session->signOut()));
    EXPECT_TRUE(server.requests().empty());

    ASSERT_TRUE(await(session->login("a@example.org", "right")));
    server.setDown(true);
    EXPECT_FALSE(await(session->signOut()));
    EXPECT_EQ(stored(), "r1");
    server.setDown(false);
    // Only a 401 says that there is nothing left to end.
    for (const int status : {403, 429, 503}) {
        server.refuseLogout(status);
        EXPECT_EQ(statusOf(await(session->signOut()).error()), status);
        EXPECT_EQ(stored(), "r1");
    }
    server.refuseLogout(401);
    EXPECT_TRUE(await(session->signOut()));
    EXPECT_FALSE(stored());
    EXPECT_EQ(decodeJson<LogoutRequest>(server.requests().back().body)->refreshToken, "r1");
    EXPECT_FALSE(request());
    EXPECT_EQ(server.count("/api/workspaces/w/tags"), 0);
}

TEST_F(AuthSessionTest, RenewsInTurnsWithOtherProcesses)
{
    const QTemporaryDir folder;
    const auto shared = [&] { return std::make_shared<FileTokenStore>(folder.path()); };
    store = shared();
    await(store->write(server.issue().refreshToken, server.url()));
    server.setRefreshDelay(20ms);

    // Threads of their own stand for the processes: each has its lock, its store and its network.
    std::vector<std::shared_ptr<NetworkThread>> threads;
    std::vector<std::shared_ptr<AuthSession>> sessions;
    std::vector<Task<CallResult<std::string>>> tokens;
    for (int i = 0; i < 4; ++i) {
        threads.push_back(std::make_shared<NetworkThread>());
        AuthSessionOptions mine = options(server.url());
        mine.tokenStore = shared();
        mine.lockPath = folder.filePath(QStringLiteral("lock")).toStdString();
        sessions.push_back(AuthSession::make(*threads.back(), mine));
    }
    std::vector<std::string> refused(sessions.size());
    for (int round = 0; round < 3; ++round) {
        for (std::size_t i = 0; i < sessions.size(); ++i)
            tokens.push_back(sessions[i]->accessTokenAfterRefusal(refused[i]));
        for (std::size_t i = 0; i < sessions.size(); ++i) {
            const auto token = await(std::move(tokens[i]));
            ASSERT_TRUE(token) << describe(token.error());
            EXPECT_NE(*token, refused[i]);
            refused[i] = *token;
        }
        tokens.clear();
    }
    EXPECT_EQ(server.refreshes(), 12);
    EXPECT_EQ(stored(), "r13");
}

TEST_F(AuthSessionTest, DoesNotTakeALateRefusalForTheEnd)
{
    // Another process renewed between our reading of the token and the server's answer.
    struct Overtaken final : TokenStore {
        MemoryTokenStore inner;
        std::string newer;
        int reads = 0;
        Task<StoredToken> read(std::string account) override
        {
            if (++reads == 2)
                co_await inner.write(newer, account);
            co_return co_await inner.read(account);
        }
        Task<> write(std::string value, std::string account) override
        {
            return inner.write(std::move(value), std::move(account));
        }
        Task<> remove(std::string account) override { return inner.remove(std::move(account)); }
    };
    const auto overtaken = std::make_shared<Overtaken>();
    overtaken->newer = server.issue().refreshToken;
    await(overtaken->inner.write("spent", server.url()));
    store = overtaken;
    open(server.url());
    EXPECT_TRUE(request());
    EXPECT_EQ(server.refreshes(), 2);
}

TEST_F(AuthSessionTest, GoesOnWhenTheLockFileCannotBeMade)
{
    AuthSessionOptions mine = options(server.url());
    mine.lockPath = "/nonexistent/folder/lock";
    await(store->write(server.issue().refreshToken, server.url()));
    session = AuthSession::make(*thread, mine);
    EXPECT_TRUE(await(session->validAccessToken()));
}

TEST_F(AuthSessionTest, WaitsOnlySoLongForAnotherProcess)
{
    const QTemporaryDir folder;
    AuthSessionOptions mine = options(server.url());
    mine.lockPath = folder.filePath(QStringLiteral("lock")).toStdString();
    mine.lockPatience = 50ms;
    await(store->write(server.issue().refreshToken, server.url()));
    FileLock holder(mine.lockPath);
    ASSERT_TRUE(holder.tryLock());
    session = AuthSession::make(*thread, mine);
    const auto token = await(session->validAccessToken());
    ASSERT_FALSE(token);
    EXPECT_TRUE(std::holds_alternative<ConnectionError>(token.error()));
    holder.unlock();
    EXPECT_TRUE(await(session->validAccessToken()));
}

Task<CallResult<ExternalExchangeRequest>> anotherCode(std::shared_ptr<std::atomic<int>> count)
{
    ++*count;
    ExternalExchangeRequest request;
    request.code = "code";
    request.codeVerifier = Pkce::make().verifier;
    co_return std::move(request);
}

TEST_F(AuthSessionTest, SignsInByItselfWhereItCan)
{
    testing::FaultProxy proxy(server.url());
    AuthSessionOptions mine = options(proxy.url());
    const auto codes = std::make_shared<std::atomic<int>>(0);
    mine.reauthenticator = [codes] { return anotherCode(codes); };
    session = AuthSession::make(*thread, mine);
    client = std::make_unique<OrvaneClient>(thread, session);
    int ends = 0;
    QObject context;
    session->onSessionEnded(&context, [&] { ++ends; });
    EXPECT_TRUE(await(session->hasCredentials()));
    EXPECT_TRUE(request());
    EXPECT_EQ(*codes, 1);
    // The server forgot everything: the next request signs in anew.
    server.revokeAccessTokens();
    server.revokeRefreshTokens();
    EXPECT_TRUE(request());
    EXPECT_EQ(*codes, 2);
    // A code that was used up on the way is no reason to give up; a second one is.
    const auto signInAgain = [&] { return await(session->accessTokenAfterRefusal("a2")); };
    using testing::Fault;
    now = now.load() + 3600s;
    proxy.setPlan(testing::plans::inOrder({Fault::answer(401), Fault::answer(400)}));
    EXPECT_TRUE(signInAgain());
    EXPECT_EQ(*codes, 4);
    proxy.setPlan(testing::plans::inOrder({Fault::answer(401), Fault::answer(400), Fault::answer(403)}));
    EXPECT_EQ(statusOf(signInAgain().error()), 403);
    QCoreApplication::processEvents();
    EXPECT_EQ(ends, 0);
}

TEST(Pkce, MatchesTheStandardsExample)
{
    EXPECT_EQ(pkceChallenge("dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"),
              "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM");
    const Pkce one = Pkce::make();
    EXPECT_EQ(one.verifier.size(), 43U);
    EXPECT_NE(one.verifier, Pkce::make().verifier);
    EXPECT_EQ(one.challenge, pkceChallenge(one.verifier));
}

} // namespace
} // namespace orvane
