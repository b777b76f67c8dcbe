// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Installation.h"
#include "Http/CallError.h"
#include "OrvaneAPI/Schemas.h"
#include "Outbox/Outbox.h"
#include "Support/Result.h"
#include "Support/Task.h"
#include "Time/UserTime.h"
#include "Tracker/Tracker.h"

#include <QObject>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class AuthSession;
class LocalServerLink;
class NetworkThread;
class OrvaneClient;

/// Why an account could not be opened or signed in to.
struct AccountError {
    enum class Kind {
        /// Nobody is signed in to this server; the user has to sign in.
        SignedOut,
        /// The server cannot be reached and nothing is known of the account yet.
        Unreachable,
        /// The file of entries and queued changes cannot be used.
        Store,
        /// The server refused.
        Refused,
    };
    Kind kind = Kind::Unreachable;
    /// A sentence for the user.
    std::string message;
    std::optional<CallError> error;
};

/// One signed-in account put together: the session, the client, the store, the outbox and the tracker of the
/// workspace in use. The command and the application both start from here.
///
/// Opening works without the server when the account is known: then the last known profile is used,
/// `isReachable` is false and changes wait in the outbox. The account on this computer signs in by itself
/// through the server's socket.
///
/// Thread: the main thread. Owner: the command or the application; `close` before it goes.
class Account final : public QObject {
    Q_OBJECT

public:
    struct Options {
        /// Outlives the account.
        Installation *installation = nullptr;
        /// None: the server signed in to, at first use the server on this computer.
        std::optional<std::string> server;
        bool startsServer = true;
        /// None: the one used last, else the account's default.
        std::optional<std::string> workspace;
        /// None: the account's time zone.
        std::optional<std::string> zone;
        /// How long to wait for the server in all, from the beginning of `open` on, before going on without
        /// it; zero: as long as the transport does. An account that is not known yet has nothing to go on
        /// with: for it the wait counts from when the server was found.
        std::chrono::milliseconds patience{0};
        /// Path of the program that is the server on this computer; empty: beside the running program.
        std::string serverProgram;
    };

    struct Credentials {
        std::string email;
        std::string password;
        bool registers = false;
    };

    static Task<Result<std::unique_ptr<Account>, AccountError>> open(Options options);
    /// Signs in (or registers) and makes the server the current one.
    static Task<Result<std::unique_ptr<Account>, AccountError>> signIn(Options options,
                                                                       Credentials credentials);
    ~Account() override;

    /// Ends the session at the server, forgets the tokens and goes back to the server on this computer. The
    /// store stays. When the server cannot be told, everything stays as it was.
    Task<Result<void, AccountError>> signOut();
    /// The same for a session that is over, so that no account can be opened: forgets what is left of it.
    static Task<Result<void, AccountError>> leaveEndedSession(Options options);
    /// Ends what is under way; afterwards the account can be destroyed.
    Task<> close();

    const std::string &server() const { return m_server; }
    /// The server on this computer.
    bool isLocal() const { return m_isLocal; }
    /// Signed in without the user's doing, as on this computer.
    bool isAutomatic() const { return m_isAutomatic; }
    /// Whether the server answered when the account was opened, or since.
    bool isReachable() const { return m_isReachable; }
    /// Why it did not.
    const std::string &unreachableReason() const { return m_unreachableReason; }
    const MeResponse &me() const { return m_me; }
    /// What the user should know about how the sign-in is kept; empty when all is well.
    const std::string &tokenNotice() const { return m_tokenNotice; }
    /// What the user should know about the time zone in use; empty when all is well.
    const std::string &timeNotice() const { return m_timeNotice; }
    const UserTime &time() const { return m_tracker->time(); }

    OrvaneClient &client() { return *m_client; }
    LocalStore &store() { return *m_store; }
    std::string storePath() const;
    Outbox &outbox() { return *m_outbox; }
    Tracker &tracker() { return *m_tracker; }
    const Tracker &tracker() const { return *m_tracker; }

    /// Switches to another workspace of the account and remembers it. False when the account has none of that
    /// id.
    bool useWorkspace(const std::string &id);
    /// Takes over a changed profile (after UpdatePreferences and the like) and keeps it for times without the
    /// server.
    Task<> updateMe(MeResponse me);
    /// Lets the patience start anew, because the server just answered.
    void restartPatience();
    /// False once the patience has all but run out: what is begun now would be cut short.
    bool hasPatience() const { return !m_isWindingDown; }

private:
    explicit Account(Options options);
    Task<Result<void, AccountError>> findServer();
    Task<Result<void, AccountError>> findLocalServer();
    Result<void, AccountError> moveLocalStores(const std::string &before);
    Task<> makeClient();
    Task<Result<void, AccountError>> openKnown();
    Task<AccountError> whyUnknown();
    Task<Result<void, AccountError>> openWith(Credentials credentials);
    Task<Result<void, AccountError>> finishOpening();
    Task<Result<void, AccountError>> openStore(std::string accountId);
    Task<> fetchMe();
    bool isSessionOver() const;
    Task<Result<void, AccountError>> endSession();
    void leaveServer();
    Task<Outbox::SendVerdict> checkAccount();
    Result<void, AccountError> selectWorkspace();
    const WorkspaceSummary *chosenWorkspace() const;
    void makeTracker();
    bool isKnown() const;
    void startPatience();
    void countPatience();
    void endPass();
    void giveUp();
    void closeTransport();

    Options m_options;
    std::string m_server;
    bool m_isLocal = false;
    bool m_isAutomatic = false;
    bool m_isReachable = false;
    std::string m_unreachableReason;
    std::string m_tokenNotice;
    std::string m_timeNotice;
    std::string m_accountId;
    /// The profile in use; the store's until the server has given a fresh one.
    MeResponse m_me;
    bool m_hasProfile = false;
    MeResponse m_freshMe;
    bool m_hasFreshMe = false;
    std::optional<CallError> m_meError;
    std::unique_ptr<QTimer> m_patience;
    std::unique_ptr<QTimer> m_windDown;
    bool m_isWindingDown = false;
    std::shared_ptr<NetworkThread> m_network;
    std::shared_ptr<LocalServerLink> m_link;
    std::shared_ptr<AuthSession> m_session;
    std::shared_ptr<OrvaneClient> m_client;
    std::shared_ptr<LocalStore> m_store;
    std::unique_ptr<Outbox> m_outbox;
    std::unique_ptr<Tracker> m_tracker;
};

} // namespace orvane
