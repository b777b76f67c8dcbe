// SPDX-License-Identifier: GPL-3.0-or-later
#include "Security/PasswordHash.h"
#include "ServerFixture.h"

namespace orvane::server {

using namespace std::chrono_literals;

class SignIn : public ServerFixture {
protected:
    HttpResponse login(const std::string &password, const std::string &email = "grace@example.org")
    {
        LoginRequest body;
        body.email = email;
        body.password = password;
        return call<operations::Login>({body});
    }
    HttpResponse refresh(const std::string &token) { return call<operations::RefreshTokens>({{token}}); }
    AuthTokensResponse refreshed(const std::string &token)
    {
        const auto tokens = decodeJson<AuthTokensResponse>(refresh(token).body);
        EXPECT_TRUE(tokens);
        return tokens.value_or(AuthTokensResponse{});
    }
    bool isSignedIn(const std::string &token)
    {
        return send(operations::GetMe::request({}), token).status == 200;
    }
};

TEST_F(SignIn, RegisteringMakesAnAccountWithAWorkspace)
{
    registerAccount();
    const MeResponse account = me();
    EXPECT_EQ(account.email, "grace@example.org");
    EXPECT_TRUE(account.hasPassword);
    ASSERT_EQ(account.workspaces.size(), 1U);
    EXPECT_EQ(account.workspaces[0].role, WorkspaceRole::owner);
    EXPECT_EQ(account.workspaces[0].id, account.defaultWorkspaceId);

    EXPECT_EQ(call<operations::Register>({registration("GRACE@Example.org")}).status, 409);
    EXPECT_EQ(fieldErrors(call<operations::Register>({registration("nobody")})).count("email"), 1U);
    EXPECT_EQ(fieldErrors(call<operations::Register>({registration("ada@localhost")})).count("email"), 1U);
    // A zero-width space, a soft hyphen, a Hangul filler, a variation selector, a bell and a no-break space.
    for (const char *hidden :
         {"grace@exam\u200bple.org", "grace@example.org\u00ad", "gr\u3164ace@example.org",
          "grace@example\ufe0f.org", "grace@example.org\a", "grace@example\u00a0.org", "ada@local\u2060host"})
        EXPECT_EQ(fieldErrors(call<operations::Register>({registration(hidden)})).count("email"), 1U)
            << hidden;
    EXPECT_EQ(call<operations::Register>({registration("gräce@bücher.example")}).status, 201);
    auto elsewhere = registration("other@example.org");
    elsewhere.timeZone = "Mars/Olympus";
    EXPECT_EQ(fieldErrors(call<operations::Register>({elsewhere})).count("timeZone"), 1U);
}

TEST_F(SignIn, LoginTellsNeitherWhichPartIsWrongNorKeepsThePassword)
{
    registerAccount();
    EXPECT_EQ(login("correct horse battery").status, 200);
    EXPECT_EQ(login("correct horse battery", "Grace@EXAMPLE.org").status, 200);
    const HttpResponse wrongPassword = login("wrong");
    const HttpResponse unknownAddress = login("correct horse battery", "alan@example.org");
    EXPECT_EQ(wrongPassword.status, 401);
    EXPECT_EQ(wrongPassword.body, unknownAddress.body);
    EXPECT_EQ(wrongPassword.headers.find("Content-Type"), "application/problem+json");
}

TEST(PasswordHash, TheDecoyCostsWhatARealHashCosts)
{
    EXPECT_FALSE(wantsRehash(decoyHash()));
    EXPECT_FALSE(passwordFits(std::nullopt, "anything"));
}

TEST_F(SignIn, GuessingIsSlowedDownByAddressAndPeer)
{
    registerAccount();
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(login("guess").status, 401);
    const HttpResponse slowed = login("correct horse battery");
    EXPECT_EQ(slowed.status, 429);
    EXPECT_EQ(slowed.headers.find("Retry-After"), "1");
    peer = "192.0.2.7";
    EXPECT_EQ(login("correct horse battery").status, 200) << "who guesses keeps nobody else out";
    peer = "127.0.0.1";
    EXPECT_EQ(login("correct horse battery").status, 429) << "nor does the other's success help them";

    now += 1s;
    EXPECT_EQ(login("guess").status, 401);
    EXPECT_EQ(login("guess").headers.find("Retry-After"), "2") << "the wait grows";
    now += 2s;
    EXPECT_EQ(login("correct horse battery").status, 200);
    now += 61min;
    EXPECT_EQ(login("guess").status, 401);
    EXPECT_EQ(login("guess").status, 401) << "an hour of quiet is forgiven";
}

TEST(PasswordGuesses, MadeUpAddressesSlowNobodyOnThisComputer)
{
    const Instant now = instantFromMilliseconds(0);
    PasswordGuesses guesses;
    for (int i = 0; i < 1000; ++i) {
        for (const char *peer : {"127.0.0.1", "192.0.2.7"})
            guesses.settle("nobody" + std::to_string(i) + "@example.org", peer, false, now);
    }
    EXPECT_FALSE(guesses.wait("grace@example.org", "127.0.0.1", now));
    EXPECT_TRUE(guesses.wait("grace@example.org", "192.0.2.7", now)) << "one password for many addresses";
    EXPECT_FALSE(guesses.wait("grace@example.org", "192.0.2.8", now));
}

TEST_F(SignIn, AccessTokensAreSignedAndShortLived)
{
    const AuthTokensResponse tokens = registerAccount();
    EXPECT_EQ(tokens.accessTokenExpiresAt, now + 15min);
    EXPECT_TRUE(isSignedIn(tokens.accessToken));
    for (const char *scheme : {"bearer ", "BEARER ", "Bearer  "}) {
        HttpRequest request = operations::GetMe::request({});
        request.headers.set("Authorization", scheme + tokens.accessToken);
        EXPECT_EQ(send(request).status, 200) << scheme;
    }
    std::string changed = tokens.accessToken;
    changed[changed.size() / 2] ^= 1;
    for (const std::string &bad : {changed, tokens.refreshToken, std::string("1.a.b.99999999999999."),
                                   std::string("...."), std::string("x")})
        EXPECT_FALSE(isSignedIn(bad)) << bad;
    now += 15min - 1ms;
    EXPECT_TRUE(isSignedIn(tokens.accessToken));
    now += 1ms;
    EXPECT_FALSE(isSignedIn(tokens.accessToken));
}

TEST_F(SignIn, TheTokenSpentLastStaysGoodUntilItsSuccessorIsUsed)
{
    const std::string first = registerAccount().refreshToken;
    const std::string lost = refreshed(first).refreshToken;
    const std::string second = refreshed(first).refreshToken; // the first answer never arrived
    EXPECT_NE(lost, second);
    const std::string third = refreshed(second).refreshToken;
    const std::string access = refreshed(second).accessToken;
    EXPECT_TRUE(isSignedIn(access));
    EXPECT_EQ(refresh(third).status, 200);

    EXPECT_EQ(refresh(first).status, 401) << "older than the last spent one: someone has a copy";
    EXPECT_FALSE(isSignedIn(access));
    EXPECT_EQ(refresh(third).status, 401) << "the session is over";
}

TEST_F(SignIn, ManyLostAnswersDoNotEndTheSession)
{
    const std::string first = registerAccount().refreshToken;
    std::string latest;
    for (int i = 0; i < 20; ++i) {
        now += 1s;
        latest = refreshed(first).refreshToken;
    }
    EXPECT_EQ(refresh(latest).status, 200);
}

/// The thief has a copy of the token that its owner spent last, and renews until the owner's own token is
/// none of the successors any more.
TEST_F(SignIn, ManyRenewalsDoNotHideAStolenToken)
{
    const std::string stolen = registerAccount().refreshToken;
    const AuthTokensResponse owners = refreshed(stolen);
    AuthTokensResponse thiefs;
    for (int i = 0; i < 9; ++i) {
        now += 1s;
        thiefs = refreshed(stolen);
    }
    EXPECT_EQ(refresh(owners.refreshToken).status, 401);
    EXPECT_EQ(refresh(thiefs.refreshToken).status, 401) << "the session is over";
    EXPECT_FALSE(isSignedIn(thiefs.accessToken));
}

/// The same after the thief went on with a successor, a long time before the owner comes back.
TEST_F(SignIn, ASupersededTokenIsKnownUntilItExpires)
{
    const std::string stolen = registerAccount().refreshToken;
    const std::string owners = refreshed(stolen).refreshToken;
    AuthTokensResponse thiefs = refreshed(stolen);
    for (int i = 0; i < 59; ++i) {
        now += std::chrono::days{1};
        thiefs = refreshed(thiefs.refreshToken);
    }
    EXPECT_EQ(refresh(owners).status, 401);
    EXPECT_FALSE(isSignedIn(thiefs.accessToken));
}

TEST_F(SignIn, RefreshTokensLiveSixtyDaysFromTheirLastUse)
{
    std::string token = registerAccount().refreshToken;
    now += std::chrono::days{59};
    token = refreshed(token).refreshToken;
    now += std::chrono::days{59};
    token = refreshed(token).refreshToken;
    now += std::chrono::days{60};
    EXPECT_EQ(refresh(token).status, 401);
}

TEST_F(SignIn, LogoutEndsTheSessionAtOnce)
{
    const AuthTokensResponse tokens = registerAccount();
    EXPECT_EQ(call<operations::Logout>({{"unknown"}}).status, 202);
    EXPECT_TRUE(isSignedIn(tokens.accessToken));
    EXPECT_EQ(call<operations::Logout>({{tokens.refreshToken}}).status, 202);
    EXPECT_FALSE(isSignedIn(tokens.accessToken));
    EXPECT_EQ(refresh(tokens.refreshToken).status, 401);
}

TEST_F(SignIn, SessionsAreListedAndRevoked)
{
    const std::string laptop = registerAccount().accessToken;
    LoginRequest body;
    body.email = "grace@example.org";
    body.password = "correct horse battery";
    body.deviceName = "phone";
    const auto phone = expect<operations::Login, Ok<AuthTokensResponse>>({body}).body.accessToken;
    now += 5min;

    auto sessions = expect<operations::ListSessions, Ok<std::vector<SessionResponse>>>({}).body;
    ASSERT_EQ(sessions.size(), 2U);
    EXPECT_TRUE(sessions[0].isCurrent);
    EXPECT_EQ(sessions[0].deviceName, "laptop");
    EXPECT_EQ(sessions[0].lastUsedAt, now);
    EXPECT_EQ(sessions[1].deviceName, "phone");
    EXPECT_FALSE(sessions[1].isCurrent);

    const std::string phoneSession = sessions[1].id;
    registerAccount("alan@example.org");
    EXPECT_EQ(call<operations::RevokeSession>({phoneSession}).status, 404) << "somebody else's";
    accessToken = laptop;
    EXPECT_EQ(call<operations::RevokeSession>({phoneSession}).status, 204);
    EXPECT_FALSE(isSignedIn(phone));

    const auto tablet = expect<operations::Login, Ok<AuthTokensResponse>>({body}).body.accessToken;
    EXPECT_EQ(call<operations::RevokeOtherSessions>({}).status, 204);
    EXPECT_FALSE(isSignedIn(tablet));
    EXPECT_TRUE(isSignedIn(laptop));
}

TEST_F(SignIn, ChangingThePasswordEndsTheOtherSessions)
{
    const std::string other = registerAccount().accessToken;
    LoginRequest body;
    body.email = "grace@example.org";
    body.password = "correct horse battery";
    accessToken = expect<operations::Login, Ok<AuthTokensResponse>>({body}).body.accessToken;
    EXPECT_EQ(
        fieldErrors(call<operations::ChangePassword>({{"wrong", "new password"}})).count("currentPassword"),
        1U);
    EXPECT_EQ(call<operations::ChangePassword>({{"correct horse battery", "new password"}}).status, 204);
    EXPECT_TRUE(isSignedIn(accessToken));
    EXPECT_FALSE(isSignedIn(other));
    EXPECT_EQ(login("correct horse battery").status, 401);
    EXPECT_EQ(login("new password").status, 200);
}

class LocalSignIn : public ServerFixture {
protected:
    HttpResponse exchange(const std::string &code, const std::string &verifier)
    {
        ExternalExchangeRequest body;
        body.code = code;
        body.codeVerifier = verifier;
        return call<operations::ExchangeExternalSignIn>({body});
    }
};

TEST_F(LocalSignIn, TheFirstCodeMakesTheAccountOnThisComputer)
{
    EXPECT_TRUE(signInLocally().isNewAccount);
    const MeResponse account = me();
    EXPECT_EQ(account.email, "ada@localhost");
    EXPECT_EQ(account.timeZone, "Europe/Paris");
    EXPECT_FALSE(account.hasPassword);
    ASSERT_EQ(account.workspaces.size(), 1U);
    EXPECT_EQ(account.workspaces[0].name, "My workspace");

    EXPECT_FALSE(signInLocally().isNewAccount);
    EXPECT_EQ(me().id, account.id);
    EXPECT_EQ(call<operations::ChangePassword>({{"anything", "new password"}}).status, 422);
    LoginRequest body;
    body.email = "ada@localhost";
    body.password = "anything";
    EXPECT_EQ(call<operations::Login>({body}).status, 401);
}

TEST_F(LocalSignIn, ACodeIsGoodOnceForAMinuteWithItsVerifier)
{
    const std::string verifier = randomText(32);
    const std::string challenge = digestText(verifier);
    const std::string spent = server->localSignInCode(challenge, "").value();
    EXPECT_EQ(exchange(spent, verifier).status, 200);
    EXPECT_EQ(exchange(spent, verifier).status, 400);

    const std::string guessed = server->localSignInCode(challenge, "").value();
    EXPECT_EQ(exchange(guessed, randomText(32)).status, 400);
    EXPECT_EQ(exchange(guessed, verifier).status, 400) << "an attempt spends the code";

    const std::string late = server->localSignInCode(challenge, "").value();
    now += 60s;
    EXPECT_EQ(fieldErrors(exchange(late, verifier)).count("code"), 1U);
    EXPECT_FALSE(server->localSignInCode("short", ""));
    EXPECT_FALSE(server->localSignInCode(std::string(43, '='), ""));
}

TEST_F(LocalSignIn, SessionsOfEveryRunDoNotPileUp)
{
    for (int i = 0; i < 5; ++i)
        signInLocally();
    now += 25h;
    signInLocally();
    EXPECT_EQ((expect<operations::ListSessions, Ok<std::vector<SessionResponse>>>({}).body.size()), 1U);
}

TEST_F(LocalSignIn, RegistrationIsClosedBeyondLoopback)
{
    openServer({"192.0.2.7", 0});
    auto request = operations::Register::request({registration()});
    request.headers.set("Host", "192.0.2.7:0");
    EXPECT_EQ(send(request).status, 403);
    auto about = operations::GetServer::request({});
    about.headers.set("Host", "192.0.2.7:0");
    EXPECT_FALSE(decodeJson<ServerResponse>(send(about).body).value().registrationOpen);
}

} // namespace orvane::server
