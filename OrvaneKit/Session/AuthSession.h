// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/Middleware.h"
#include "Http/ServerCalls.h"
#include "Session/SessionEnd.h"
#include "Session/TokenStore.h"
#include "Support/Eventual.h"
#include "Support/FileLock.h"
#include "Support/Instant.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class NetworkThread;

/// Gets a new one-time code when there is no refresh token, or the server takes it no longer. A session that
/// has this never ends. Called on the network thread.
using Reauthenticator = std::function<Task<CallResult<ExternalExchangeRequest>>()>;

struct AuthSessionOptions {
    /// The server's address, as in "https://track.example"; also the account in the token store.
    std::string server;
    std::shared_ptr<TokenStore> tokenStore;
    /// How the server lists this device to its user.
    std::string deviceName;
    /// A file that processes which share the token store lock while they renew; empty when nobody shares it.
    std::string lockPath = {};
    Reauthenticator reauthenticator = {};
    /// The time that tokens expire by: the system's, whatever the application's clock says.
    std::function<Instant()> now = [] {
        return std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    };
    /// How long another process may hold the lock before a renewal gives up.
    std::chrono::milliseconds lockPatience = std::chrono::seconds{30};
};

/// The user's credentials for one server: a short-lived access token in memory, a refresh token in the token
/// store. It renews the one with the other, one renewal at a time in this process and, under the lock file,
/// among all processes that share the store; it signs in and out.
///
/// An actor on the network thread, which must outlive it; its calls may be made from any thread with an event
/// loop and resume there. Every failure is a CallError. Only a refusal (401) of the refresh token ends the
/// session; while the server cannot be reached, or the token store does not answer, everything stays as it
/// was.
class AuthSession : public std::enable_shared_from_this<AuthSession> {
public:
    /// `transport` carries the credentials' own requests, which never pass the AuthMiddleware.
    static std::shared_ptr<AuthSession> make(NetworkThread &thread, std::shared_ptr<HttpTransport> transport,
                                             AuthSessionOptions options);
    /// Over the network thread's own transport.
    static std::shared_ptr<AuthSession> make(NetworkThread &thread, AuthSessionOptions options);

    /// Without a slash at the end.
    const std::string &server() const { return m_options.server; }

    Task<CallResult<void>> login(std::string email, std::string password);
    /// The device's name is filled in.
    Task<CallResult<void>> registerAccount(RegisterRequest request);
    /// The device's name is filled in.
    Task<CallResult<void>> passkeyLogin(NativePasskeyLoginRequest request);
    /// Answers whether the account is new.
    Task<CallResult<bool>> exchangeExternalSignIn(std::string code, std::string codeVerifier);
    /// Tells the server to forget the refresh token, then forgets both tokens here. When the server cannot be
    /// told, both stay; one that knows the token no longer (401) has nothing to be told.
    Task<CallResult<void>> signOut();
    /// Whether there is something to sign in with, as far as the token store says.
    Task<bool> hasCredentials();
    /// What the server says about itself; needs no signing in.
    Task<CallResult<ServerResponse>> getServer();
    /// What a passkey is to answer for a sign-in; its token goes back with the answer.
    Task<CallResult<NativePasskeyOptionsResponse>> passkeyOptions();

    /// A token that is good for more than 60 seconds, renewed if need be.
    Task<CallResult<std::string>> validAccessToken();
    /// A token other than the one that the server has just refused: one that was renewed meanwhile, or a new
    /// one.
    Task<CallResult<std::string>> accessTokenAfterRefusal(std::string refused);

    /// Calls the handler on the thread of `context` each time the session ends; one end before the first
    /// listener is kept for it.
    void onSessionEnded(QObject *context, std::function<void()> handler);

private:
    using Self = std::shared_ptr<AuthSession>;
    using TokenResult = CallResult<std::string>;
    using StoreLock = std::shared_ptr<FileLock>;

    AuthSession(NetworkThread &thread, std::shared_ptr<HttpTransport> transport, AuthSessionOptions options);

    bool hasValidToken() const;
    void forgetAccessToken();
    static Task<TokenResult> validTokenHere(Self self);
    static Task<TokenResult> otherTokenHere(Self self, std::string refused);
    static Task<TokenResult> renewed(Self self);
    static Task<TokenResult> renew(Self self);
    static Task<TokenResult> reauthenticate(Self self);
    static Task<CallResult<ExternalSignInResponse>> exchangeNewCode(Self self);
    static Task<CallResult<AuthTokensResponse>> refreshStored(Self self, std::string refreshToken);
    static Task<CallResult<AuthTokensResponse>> refresh(Self self, std::string refreshToken);
    static Task<CallResult<ExternalSignInResponse>> exchange(Self self, ExternalExchangeRequest request);
    static Task<> store(Self self, AuthTokensResponse tokens);
    static Task<CallResult<StoreLock>> locked(Self self);
    template <class SignIn>
    Task<CallResult<bool>> signIn(SignIn call);
    template <class SignIn>
    static Task<CallResult<bool>> signInHere(Self self, SignIn call);
    static Task<CallResult<void>> signOutHere(Self self);
    static Task<bool> hasCredentialsHere(Self self);

    NetworkThread &m_thread;
    AuthSessionOptions m_options;
    /// What needs no token.
    ServerCalls m_raw;
    std::optional<std::string> m_accessToken;
    Instant m_accessTokenExpiresAt = Instant::min();
    /// The one renewal that is under way.
    std::optional<Eventual<TokenResult>> m_renewal;
    SessionEnd m_end;
};

} // namespace orvane
