// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/AccountError.h"
#include "Account/AccountState.h"
#include "Account/Installation.h"
#include "OrvaneAPI/HttpMessage.h"
#include "Session/AuthSession.h"
#include "Session/TokenStoreChoice.h"
#include "Support/Result.h"
#include "Support/Task.h"

#include <QObject>
#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class HttpTransport;
class LocalServerLink;
class NetworkThread;
class OrvaneClient;

/// The way to one server: the network, the link to the server on this computer, the session and the client
/// over them. It settles which server that is, starts the one on this computer, and tells through its state
/// how the server is to be reached.
///
/// The account on this computer signs in by itself, through the server's socket; anywhere else a person does.
///
/// Thread: the main thread. Owner: who opens an account with it, and that account.
class ServerAccess final : public QObject {
    Q_OBJECT

public:
    struct Options {
        /// Outlives the access.
        Installation *installation = nullptr;
        /// None: the server signed in to, at first use the server on this computer.
        std::optional<std::string> server = {};
        bool startsServer = true;
        /// Path of the program that is the server on this computer; empty: beside the running program.
        std::string serverProgram = {};
        /// Somebody signs in, at the server on this computer too.
        bool isForSignIn = false;
        /// Whether a server whose account is known here has to answer before that is opened. Without, what is
        /// known is there at once, and what the server says follows; should the server on this computer turn
        /// out to have another address, `moved` tells it.
        bool waitsForServer = true;
        /// In place of the network, as under a simulator; then `server` is named.
        std::shared_ptr<NetworkThread> network = {};
        std::shared_ptr<HttpTransport> transport = {};
        Reauthenticator reauthenticator = {};
    };

    explicit ServerAccess(Options options);
    ~ServerAccess() override;

    /// Whether an account was in use there, which can be gone on with when the server does not answer.
    bool isKnown() const;
    bool waitsForServer() const { return m_options.waitsForServer || !isKnown(); }
    /// Finds the server (or starts it), and makes session and client. A server that is away is no error as
    /// long as its address is known; the state tells it.
    Task<Result<void, AccountError>> find();

    /// Without a slash at the end.
    const std::string &address() const { return m_address; }
    /// The server on this computer.
    bool isLocal() const { return m_isLocal; }
    /// Signed in without the user's doing, as on this computer.
    bool isAutomatic() const { return m_isAutomatic; }
    /// Where a sign-in lies, and what the user should know about that; empty when all is well.
    TokenPlace tokenPlace() const { return m_tokenPlace; }
    const std::string &tokenNotice() const { return m_tokenNotice; }
    Installation &installation() const { return *m_options.installation; }

    AccountState &state() { return m_state; }
    const AccountState &state() const { return m_state; }
    /// Null before the server was found.
    const std::shared_ptr<OrvaneClient> &client() const { return m_client; }
    const std::shared_ptr<AuthSession> &session() const { return m_session; }

    /// The request as it goes out, and where to, for who opens a connection of its own (a WebSocket): the
    /// server on this computer proves itself first, and the request then carries the proof that it asks for.
    struct Proven {
        std::string address;
        HttpRequest request;
    };
    Task<Result<Proven, ConnectionError>> proven(HttpRequest request);

    /// Ends the session at the server, forgets the tokens and goes back to the server on this computer. When
    /// the server cannot be told, everything stays as it was.
    Task<Result<void, AccountError>> signOut();

    /// The time by which nobody waits for the server any more; talks with the one on this computer end by
    /// then.
    void giveUpAt(std::chrono::steady_clock::time_point deadline);
    /// Nobody waits any more: what is under way fails, and so does what comes.
    void giveUp(const std::string &reason);
    /// Ends what is under way.
    void close();
    /// Resumes once the answers that were on their way back have been taken.
    Task<> settle();

Q_SIGNALS:
    /// The server on this computer has another address than it had; opened anew, the account follows it.
    void moved();

private:
    Task<Result<void, AccountError>> findLocal();
    Task<> lookForMove(std::shared_ptr<LocalServerLink> link);
    Result<void, AccountError> moveLocalStores(const std::string &before);
    Task<> makeClient();

    Options m_options;
    AccountState m_state;
    std::string m_address;
    bool m_isLocal = false;
    bool m_isAutomatic = false;
    TokenPlace m_tokenPlace = TokenPlace::memory;
    std::string m_tokenNotice;
    std::chrono::steady_clock::time_point m_deadline = std::chrono::steady_clock::time_point::max();
    std::shared_ptr<NetworkThread> m_network;
    std::shared_ptr<LocalServerLink> m_link;
    /// Under way beside an account that is open already.
    std::optional<Task<>> m_looking;
    std::shared_ptr<AuthSession> m_session;
    std::shared_ptr<OrvaneClient> m_client;
};

} // namespace orvane
