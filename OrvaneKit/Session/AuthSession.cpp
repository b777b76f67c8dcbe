// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/AuthSession.h"

#include "Http/NetworkThread.h"
#include "Http/ProblemMiddleware.h"
#include "Support/Require.h"

#include <QLoggingCategory>

namespace orvane {

namespace {

Q_LOGGING_CATEGORY(logSession, "orvane.session")

/// A token that expires sooner is renewed before it is used.
constexpr std::chrono::seconds renewalMargin{60};

struct SignedIn {
    AuthTokensResponse tokens;
    bool isNewAccount = false;
};

CallError storeSilent()
{
    return ConnectionError{"the token store does not answer"};
}

bool isUnauthorized(const CallError &error)
{
    const auto *refusal = std::get_if<APIError>(&error);
    return refusal && refusal->status == 401;
}

CallChannel rawChannel(NetworkThread &thread, std::shared_ptr<HttpTransport> transport,
                       const std::string &server)
{
    return {thread, ClientChain(std::move(transport), server, {std::make_shared<ProblemMiddleware>()})};
}

AuthSessionOptions withoutSlash(AuthSessionOptions options)
{
    while (options.server.ends_with('/'))
        options.server.pop_back();
    return options;
}

Task<CallResult<SignedIn>> signedIn(Task<CallResult<AuthTokensResponse>> call)
{
    auto tokens = co_await call;
    if (!tokens)
        co_return failure(std::move(tokens.error()));
    co_return SignedIn{std::move(*tokens), false};
}

Task<CallResult<SignedIn>> signedInExternally(Task<CallResult<ExternalSignInResponse>> exchange)
{
    auto answer = co_await exchange;
    if (!answer)
        co_return failure(std::move(answer.error()));
    co_return SignedIn{std::move(answer->tokens), answer->isNewAccount};
}

Task<CallResult<void>> withoutValue(Task<CallResult<bool>> signIn)
{
    auto done = co_await signIn;
    if (!done)
        co_return failure(std::move(done.error()));
    co_return CallResult<void>();
}

} // namespace

std::shared_ptr<AuthSession>
AuthSession::make(NetworkThread &thread, std::shared_ptr<HttpTransport> transport, AuthSessionOptions options)
{
    return std::shared_ptr<AuthSession>(
        new AuthSession(thread, std::move(transport), withoutSlash(std::move(options))));
}

std::shared_ptr<AuthSession> AuthSession::make(NetworkThread &thread, AuthSessionOptions options)
{
    return make(thread, thread.transport(), std::move(options));
}

AuthSession::AuthSession(NetworkThread &thread, std::shared_ptr<HttpTransport> transport,
                         AuthSessionOptions options)
    : m_thread(thread)
    , m_options(std::move(options))
    , m_raw(rawChannel(thread, std::move(transport), m_options.server))
{
    ORVANE_REQUIRE(m_options.tokenStore && m_options.now, "a session needs a token store and a clock");
}

// The calls for every thread: each hops to the network thread and holds on to the session meanwhile.

Task<CallResult<std::string>> AuthSession::validAccessToken()
{
    return m_thread.run([self = shared_from_this()] { return validTokenHere(self); });
}

Task<CallResult<std::string>> AuthSession::accessTokenAfterRefusal(std::string refused)
{
    return m_thread.run(
        [self = shared_from_this(), refused = std::move(refused)] { return otherTokenHere(self, refused); });
}

Task<CallResult<void>> AuthSession::signOut()
{
    return m_thread.run([self = shared_from_this()] { return signOutHere(self); });
}

Task<bool> AuthSession::hasCredentials()
{
    return m_thread.run([self = shared_from_this()] { return hasCredentialsHere(self); });
}

Task<CallResult<ServerResponse>> AuthSession::getServer()
{
    return m_raw.getServer();
}

Task<CallResult<NativePasskeyOptionsResponse>> AuthSession::passkeyOptions()
{
    return m_raw.nativePasskeyOptions();
}

/// `call`, given the session on the network thread, asks the server for new tokens.
template <class SignIn>
Task<CallResult<bool>> AuthSession::signIn(SignIn call)
{
    return m_thread.run(
        [self = shared_from_this(), call = std::move(call)] { return signInHere(self, call); });
}

Task<CallResult<void>> AuthSession::login(std::string email, std::string password)
{
    LoginRequest request{
        .email = std::move(email), .password = std::move(password), .deviceName = m_options.deviceName};
    return withoutValue(signIn(
        [request = std::move(request)](const Self &self) { return signedIn(self->m_raw.login(request)); }));
}

Task<CallResult<void>> AuthSession::registerAccount(RegisterRequest request)
{
    request.deviceName = m_options.deviceName;
    return withoutValue(signIn([request = std::move(request)](const Self &self) {
        return signedIn(self->m_raw.register_(request));
    }));
}

Task<CallResult<void>> AuthSession::passkeyLogin(NativePasskeyLoginRequest request)
{
    request.deviceName = m_options.deviceName;
    return withoutValue(signIn([request = std::move(request)](const Self &self) {
        return signedIn(self->m_raw.nativePasskeyLogin(request));
    }));
}

Task<CallResult<bool>> AuthSession::exchangeExternalSignIn(std::string code, std::string codeVerifier)
{
    ExternalExchangeRequest request;
    request.code = std::move(code);
    request.codeVerifier = std::move(codeVerifier);
    return signIn([request = std::move(request)](const Self &self) {
        return signedInExternally(exchange(self, request));
    });
}

void AuthSession::onSessionEnded(QObject *context, std::function<void()> handler)
{
    m_end.listen(context, std::move(handler));
}

// What happens on the network thread.

bool AuthSession::hasValidToken() const
{
    return m_accessToken && m_accessTokenExpiresAt > m_options.now() + renewalMargin;
}

void AuthSession::forgetAccessToken()
{
    m_accessToken.reset();
    m_accessTokenExpiresAt = Instant::min();
}

Task<AuthSession::TokenResult> AuthSession::validTokenHere(Self self)
{
    if (self->hasValidToken())
        co_return TokenResult(*self->m_accessToken);
    co_return co_await renewed(self);
}

Task<AuthSession::TokenResult> AuthSession::otherTokenHere(Self self, std::string refused)
{
    if (self->hasValidToken() && *self->m_accessToken != refused)
        co_return TokenResult(*self->m_accessToken);
    co_return co_await renewed(self);
}

Task<AuthSession::TokenResult> AuthSession::renewed(Self self)
{
    if (self->m_renewal) {
        const auto running = *self->m_renewal;
        co_return co_await running;
    }
    Eventual<TokenResult> renewal;
    self->m_renewal = renewal;
    TokenResult result = co_await renew(self);
    self->m_renewal.reset();
    renewal.finish(result);
    co_return std::move(result);
}

Task<AuthSession::TokenResult> AuthSession::renew(Self self)
{
    const auto lock = co_await locked(self);
    if (!lock)
        co_return failure(CallError(lock.error()));
    // Read under the lock: another process may have renewed meanwhile, and its token is the good one.
    auto stored = co_await self->m_options.tokenStore->read(self->m_options.server);
    if (!stored)
        co_return failure(storeSilent());
    if (!*stored) {
        if (self->m_options.reauthenticator)
            co_return co_await reauthenticate(self);
        co_return failure(CallError(sessionEndedError()));
    }
    auto tokens = co_await refreshStored(self, std::move(**stored));
    if (tokens) {
        std::string token = tokens->accessToken;
        co_await store(self, std::move(*tokens));
        co_return std::move(token);
    }
    if (!isUnauthorized(tokens.error()))
        co_return failure(std::move(tokens.error()));
    self->forgetAccessToken();
    co_await self->m_options.tokenStore->remove(self->m_options.server);
    if (self->m_options.reauthenticator)
        co_return co_await reauthenticate(self);
    qCInfo(logSession) << "the server refused the refresh token; the session has ended";
    self->m_end.tell();
    co_return failure(std::move(tokens.error()));
}

/// A refused token that is no longer the stored one says nothing about the session: another process, one that
/// could not use the lock file, renewed it meanwhile.
Task<CallResult<AuthTokensResponse>> AuthSession::refreshStored(Self self, std::string refreshToken)
{
    auto tokens = co_await refresh(self, refreshToken);
    if (tokens || !isUnauthorized(tokens.error()))
        co_return std::move(tokens);
    auto stored = co_await self->m_options.tokenStore->read(self->m_options.server);
    if (!stored)
        co_return failure(storeSilent());
    if (!*stored || **stored == refreshToken)
        co_return std::move(tokens);
    co_return co_await refresh(self, std::move(**stored));
}

Task<CallResult<AuthTokensResponse>> AuthSession::refresh(Self self, std::string refreshToken)
{
    co_return co_await self->m_raw.refreshTokens({.refreshToken = std::move(refreshToken)});
}

Task<CallResult<ExternalSignInResponse>> AuthSession::exchange(Self self, ExternalExchangeRequest request)
{
    request.deviceName = self->m_options.deviceName;
    co_return co_await self->m_raw.exchangeExternalSignIn(std::move(request));
}

Task<AuthSession::TokenResult> AuthSession::reauthenticate(Self self)
{
    auto signIn = co_await exchangeNewCode(self);
    // The transport may have doubled the request, and then its first copy used the code up.
    if (!signIn && std::holds_alternative<APIError>(signIn.error()))
        signIn = co_await exchangeNewCode(self);
    if (!signIn)
        co_return failure(std::move(signIn.error()));
    std::string token = signIn->tokens.accessToken;
    co_await store(self, std::move(signIn->tokens));
    co_return std::move(token);
}

Task<CallResult<ExternalSignInResponse>> AuthSession::exchangeNewCode(Self self)
{
    auto request = co_await self->m_options.reauthenticator();
    if (!request)
        co_return failure(std::move(request.error()));
    co_return co_await exchange(self, std::move(*request));
}

Task<> AuthSession::store(Self self, AuthTokensResponse tokens)
{
    self->m_accessToken = std::move(tokens.accessToken);
    self->m_accessTokenExpiresAt = tokens.accessTokenExpiresAt;
    co_await self->m_options.tokenStore->write(std::move(tokens.refreshToken), self->m_options.server);
}

Task<CallResult<AuthSession::StoreLock>> AuthSession::locked(Self self)
{
    if (self->m_options.lockPath.empty())
        co_return StoreLock();
    auto lock = std::make_shared<FileLock>(self->m_options.lockPath);
    if (co_await lockWithin(lock, self->m_options.lockPatience))
        co_return std::move(lock);
    if (lock->error().empty())
        co_return failure(CallError(ConnectionError{"another process keeps renewing the session"}));
    // A folder that cannot be written to must not keep anybody from signing in.
    qCWarning(logSession) << "renewing without a lock file:" << lock->error().c_str();
    co_return StoreLock();
}

/// Nothing is renewed meanwhile, here or in another process: the old session's next token must not replace
/// the new session's.
template <class SignIn>
Task<CallResult<bool>> AuthSession::signInHere(Self self, SignIn call)
{
    while (self->m_renewal) {
        const auto running = *self->m_renewal;
        co_await running;
    }
    const auto lock = co_await locked(self);
    if (!lock)
        co_return failure(CallError(lock.error()));
    CallResult<SignedIn> result = co_await call(self);
    if (!result)
        co_return failure(std::move(result.error()));
    const bool isNew = result->isNewAccount;
    co_await store(self, std::move(result->tokens));
    co_return isNew;
}

Task<CallResult<void>> AuthSession::signOutHere(Self self)
{
    while (self->m_renewal) {
        const auto running = *self->m_renewal;
        co_await running;
    }
    const auto lock = co_await locked(self);
    if (!lock)
        co_return failure(CallError(lock.error()));
    auto stored = co_await self->m_options.tokenStore->read(self->m_options.server);
    if (!stored)
        co_return failure(storeSilent());
    if (*stored) {
        auto done = co_await self->m_raw.logout({.refreshToken = std::move(**stored)});
        // A server that no longer knows the token has nothing to revoke.
        if (!done && !isUnauthorized(done.error()))
            co_return std::move(done);
        co_await self->m_options.tokenStore->remove(self->m_options.server);
    }
    self->forgetAccessToken();
    co_return CallResult<void>();
}

Task<bool> AuthSession::hasCredentialsHere(Self self)
{
    if (self->m_accessToken || self->m_options.reauthenticator)
        co_return true;
    const auto stored = co_await self->m_options.tokenStore->read(self->m_options.server);
    co_return !stored || stored->has_value();
}

} // namespace orvane
