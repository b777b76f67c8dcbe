// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/AccountError.h"
#include "Account/ServerAccess.h"
#include "Account/SignIn.h"
#include "LocalStore/LocalStore.h"
#include "LocalStore/StoreWatch.h"
#include "OrvaneAPI/Schemas.h"
#include "Outbox/Outbox.h"
#include "Outbox/OutboxOutcomes.h"
#include "Support/Result.h"
#include "Support/RetryTimer.h"
#include "Support/Task.h"
#include "Time/ContinuousTimer.h"
#include "Time/DayTurn.h"
#include "Time/UserTime.h"
#include "Time/WallTimer.h"
#include "Tracker/Tracker.h"

#include <QObject>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class AgentProposals;
class Connectivity;

/// One signed-in account put together: the store, the outbox and the tracker of the workspace in use, over
/// the access to its server. The command and the application both start from here.
///
/// Opening works without the server when the account is known: then the last known profile is used, the state
/// says that the server is away, and changes wait in the outbox. An account that lives on tries again by
/// itself, sends what waits when the server is back, and follows the days as they turn.
///
/// Thread: the main thread. Owner: the command or the application; `close` before it goes.
class Account final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString email READ email NOTIFY meChanged)
    Q_PROPERTY(orvane::AccountState *state READ statePointer CONSTANT)
    Q_PROPERTY(orvane::Tracker *tracker READ trackerPointer NOTIFY trackerChanged)

public:
    struct Options {
        /// None: the one used last, else the account's default.
        std::optional<std::string> workspace = {};
        /// None: the account's time zone.
        std::optional<std::string> zone = {};
        /// The process goes on until its user ends it. Otherwise it ends soon: what failed once is not asked
        /// for again, and nothing is done by the clock.
        bool livesOn = true;
        /// How long a pass waits for another process that is sending.
        std::chrono::milliseconds lockPatience = std::chrono::minutes{1};
        /// Where a test's time and disk come in; empty: the system's.
        std::function<std::unique_ptr<RetryTimer>()> retryTimer = {};
        std::function<std::unique_ptr<WallTimer>()> wallTimer = {};
        std::function<std::unique_ptr<ContinuousTimer>()> continuousTimer = {};
        std::function<std::string()> newIdentifier = {};
        StoreOptions store = {};
    };

    using Opened = Result<std::unique_ptr<Account>, AccountError>;
    /// With a server that was found.
    static Task<Opened> open(std::shared_ptr<ServerAccess> access, Options options);
    /// Signs in first, and makes the server the current one.
    static Task<Opened> signIn(std::shared_ptr<ServerAccess> access, Options options, SignIn way);
    ~Account() override;

    /// As the access has it; the account on this computer has no sign-in to end. The store stays.
    Task<Result<void, AccountError>> signOut();
    /// Ends what is under way; afterwards the account can be destroyed.
    Task<> close();

    const Options &options() const { return m_options; }
    ServerAccess &access() { return *m_access; }
    std::shared_ptr<ServerAccess> sharedAccess() const { return m_access; }
    AccountState &state() { return m_access->state(); }
    const AccountState &state() const { return std::as_const(*m_access).state(); }
    const std::string &server() const { return m_access->address(); }
    bool isLocal() const { return m_access->isLocal(); }
    bool isAutomatic() const { return m_access->isAutomatic(); }
    bool isReachable() const { return state().isReachable(); }
    const MeResponse &me() const { return m_me; }
    QString email() const { return QString::fromStdString(m_me.email); }
    AccountState *statePointer() { return &state(); }
    Tracker *trackerPointer() { return m_tracker.get(); }
    /// What the user should know about the time zone in use; empty when all is well.
    const std::string &timeNotice() const { return m_timeNotice; }
    const UserTime &time() const { return m_tracker->time(); }

    OrvaneClient &client() { return *m_access->client(); }
    LocalStore &store() { return *m_store; }
    /// What the user did last in this workspace, for taking it back.
    EntryHistory history() const { return {m_store, m_tracker->workspace().id}; }
    std::string storePath() const;
    Outbox &outbox() { return *m_outbox; }
    OutboxOutcomes &outcomes() { return *m_outcomes; }
    Tracker &tracker() { return *m_tracker; }
    const Tracker &tracker() const { return *m_tracker; }
    /// Of the tracker's workspace, and another one when the tracker is.
    AgentProposals &proposals() { return *m_proposals; }

    /// A timer of the kind that this account waits with.
    std::unique_ptr<RetryTimer> makeRetryTimer() const;

    /// Switches to another workspace of the account and remembers it. False when the account has none of that
    /// id.
    bool useWorkspace(const std::string &id);
    /// Takes over a changed profile (after UpdatePreferences and the like) and keeps it for times without the
    /// server. Zone, week and formats follow at once.
    Task<> updateMe(MeResponse me);
    /// Asks the server for the profile.
    Task<CallResult<void>> refreshMe();

Q_SIGNALS:
    /// The profile, the workspaces or the choices about time.
    void meChanged();
    /// `tracker` is another one, of another workspace; the one before goes when this has been told.
    void trackerChanged();
    /// The system says that this computer has a network again.
    void networkCameBack();

private:
    Account(std::shared_ptr<ServerAccess> access, Options options);
    static Task<Opened> opened(std::unique_ptr<Account> account, Result<void, AccountError> how);
    Task<Result<void, AccountError>> openKnown();
    Task<Result<void, AccountError>> openSignedIn(SignIn way);
    Task<AccountError> whyUnknown();
    Task<Result<void, AccountError>> finishOpening();
    Task<Result<void, AccountError>> openStore(std::string accountId);
    Task<Result<void, AccountError>> startTracking();
    Task<> fetchMe();
    bool isSessionOver() const;
    Task<Outbox::SendVerdict> checkAccount();
    const WorkspaceSummary *chosenWorkspace() const;
    bool makeTracker();
    void followTime();
    void liveOn();
    void catchUp();
    Task<> takeFromStore();
    void followTracker();
    void tryAgainLater();
    Task<> tryOnce();
    void tellNextTry();

    std::shared_ptr<ServerAccess> m_access;
    Options m_options;
    std::string m_timeNotice;
    std::string m_accountId;
    /// The profile in use; the store's until the server has given a fresh one.
    MeResponse m_me;
    bool m_hasProfile = false;
    /// Whose queue the server takes changes for, once it has said so.
    std::optional<MeResponse> m_freshMe;
    std::optional<CallError> m_meError;
    /// It was asked for in vain since.
    bool m_isMeMissed = false;
    std::shared_ptr<LocalStore> m_store;
    std::unique_ptr<Outbox> m_outbox;
    std::unique_ptr<OutboxOutcomes> m_outcomes;
    std::unique_ptr<Tracker> m_tracker;
    std::unique_ptr<AgentProposals> m_proposals;

    // Of an account that lives on
    std::unique_ptr<StoreWatch> m_storeWatch;
    std::unique_ptr<DayTurn> m_dayTurn;
    std::unique_ptr<Connectivity> m_connectivity;
    std::unique_ptr<RetryTimer> m_retry;
    std::optional<Instant> m_nextTry;
    int m_failures = 0;
};

} // namespace orvane
