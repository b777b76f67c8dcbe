// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/Account.h"

#include "Account/AccountStores.h"
#include "Account/PreferredTime.h"
#include "Account/ProfileDocument.h"
#include "Account/StoredAccount.h"
#include "Client/OrvaneClient.h"
#include "Http/Connectivity.h"
#include "Outbox/OutboxRules.h"
#include "Proposals/AgentProposals.h"
#include "Time/AppClock.h"

#include <QPointer>
#include <algorithm>

namespace orvane {

namespace {

/// The profile as it is after every change of this account's own that was accepted until the answer came:
/// that may be from before one.
Task<CallResult<MeResponse>> currentMe(QPointer<Account> account)
{
    constexpr int tries = 3;
    for (int tried = 1;; ++tried) {
        const MeResponse before = account->me();
        auto me = co_await account->client().getMe();
        if (!me || !account || account->me() == before || tried == tries)
            co_return std::move(me);
    }
}

} // namespace

Account::Account(std::shared_ptr<ServerAccess> access, Options options)
    : m_access(std::move(access)), m_options(std::move(options))
{
}

Account::~Account() = default;

Task<Account::Opened> Account::open(std::shared_ptr<ServerAccess> access, Options options)
{
    std::unique_ptr<Account> account(new Account(std::move(access), std::move(options)));
    auto how = co_await account->openKnown();
    co_return co_await opened(std::move(account), std::move(how));
}

Task<Account::Opened> Account::signIn(std::shared_ptr<ServerAccess> access, Options options, SignIn way)
{
    std::unique_ptr<Account> account(new Account(std::move(access), std::move(options)));
    auto how = co_await account->openSignedIn(std::move(way));
    if (how)
        account->m_access->installation().noteSignIn(account->server());
    co_return co_await opened(std::move(account), std::move(how));
}

Task<Account::Opened> Account::opened(std::unique_ptr<Account> account, Result<void, AccountError> how)
{
    if (how) {
        account->state().noteOpened();
        if (account->m_options.livesOn)
            account->liveOn();
        co_return std::move(account);
    }
    const auto kind = how.error().kind;
    if ((kind == AccountError::Kind::signedOut || kind == AccountError::Kind::neverSignedIn) &&
        account->state().kind() == AccountState::Kind::opening)
        account->state().noteSignedOut();
    co_await account->close();
    co_return failure(std::move(how.error()));
}

// Opening

/// Opens the account that was signed in to before; with the server away it is opened as it was last known.
Task<Result<void, AccountError>> Account::openKnown()
{
    const auto known = m_access->installation().account(server());
    if (!known && !isAutomatic() && !co_await m_access->session()->hasCredentials())
        co_return failure(
            AccountError{AccountError::Kind::neverSignedIn, "You are not signed in at " + server() + "."});
    if (!known && !isReachable())
        co_return failure(AccountError{AccountError::Kind::unreachable, state().reason()});
    // The file and the server are asked at the same time: the account is nearly always the one it was.
    std::optional<Task<Result<void, AccountError>>> opening;
    if (known)
        opening = openStore(*known);
    if (isReachable() && m_access->waitsForServer())
        co_await fetchMe();
    if (opening) {
        if (auto opened = co_await *opening; !opened)
            co_return failure(std::move(opened.error()));
    }
    if (!m_hasProfile && !m_freshMe && isReachable() && !m_access->waitsForServer())
        co_await fetchMe();
    if (m_freshMe)
        co_return co_await finishOpening();
    if (!known || !m_hasProfile || isSessionOver())
        co_return failure(co_await whyUnknown());
    co_return co_await startTracking();
}

/// Why there is no account to go on with. A store that cannot be read is not one that lacks the profile.
Task<AccountError> Account::whyUnknown()
{
    if (m_store && !m_hasProfile && !isSessionOver()) {
        if (const auto readable = co_await readThrough(*m_store); !readable)
            co_return AccountError{AccountError::Kind::store, describe(readable.error())};
    }
    if (m_meError)
        co_return AccountError::of(*m_meError);
    co_return AccountError{AccountError::Kind::unreachable, state().reason()};
}

Task<Result<void, AccountError>> Account::openSignedIn(SignIn way)
{
    auto signedIn = co_await orvane::signIn(std::move(way), m_access->session());
    if (!signedIn)
        co_return failure(AccountError::of(signedIn.error()));
    co_await fetchMe();
    if (!m_freshMe)
        co_return failure(AccountError::of(*m_meError));
    co_return co_await finishOpening();
}

Task<> Account::fetchMe()
{
    const QPointer<Account> self(this);
    auto me = co_await m_access->client()->getMe();
    if (!self)
        co_return;
    if (me)
        m_freshMe = std::move(*me);
    else
        m_meError = std::move(me.error());
}

bool Account::isSessionOver() const
{
    const auto *problem = m_meError ? std::get_if<APIError>(&*m_meError) : nullptr;
    return problem != nullptr && problem->status == 401;
}

/// With the server's word on who this is: the store is that account's, and the profile is kept for later.
Task<Result<void, AccountError>> Account::finishOpening()
{
    if (m_accountId != m_freshMe->id) {
        m_outcomes.reset();
        m_outbox.reset();
        if (auto opened = co_await openStore(m_freshMe->id); !opened)
            co_return failure(std::move(opened.error()));
    }
    m_access->installation().setAccount(server(), m_freshMe->id);
    if (!m_hasProfile || m_me != *m_freshMe)
        co_await updateMe(*m_freshMe);
    co_return co_await startTracking();
}

Task<Result<void, AccountError>> Account::openStore(std::string accountId)
{
    auto opened = co_await LocalStore::open(
        LocalStore::filePath(m_access->installation().root(), server(), accountId), m_options.store);
    if (!opened)
        co_return failure(AccountError{AccountError::Kind::store, describe(opened.error())});
    m_store = std::move(*opened);
    m_accountId = std::move(accountId);
    auto profile = co_await m_store->load<ProfileDocument>(ProfileDocument::key);
    m_hasProfile = profile.has_value();
    if (profile)
        m_me = std::move(profile->me);
    Outbox::Parts parts;
    parts.api = m_access->client();
    parts.store = m_store;
    parts.lockPath = storePath() + ".lock";
    parts.mayBeSent = [this] { return checkAccount(); };
    parts.lockPatience = m_options.lockPatience;
    parts.keepsRefusals = m_options.livesOn;
    parts.retry = makeRetryTimer();
    m_outbox = co_await Outbox::make(std::move(parts));
    m_outcomes = std::make_unique<OutboxOutcomes>(*m_outbox);
    connect(m_outbox.get(), &Outbox::isHeldBackChanged, this,
            [this] { state().setHeldBack(m_outbox->isHeldBack()); });
    connect(m_outbox.get(), &Outbox::nextTryChanged, this, &Account::tellNextTry);
    co_return Result<void, AccountError>{};
}

std::string Account::storePath() const
{
    return LocalStore::filePath(m_access->installation().root(), server(), m_accountId);
}

std::unique_ptr<RetryTimer> Account::makeRetryTimer() const
{
    return m_options.retryTimer ? m_options.retryTimer() : std::make_unique<SystemRetryTimer>();
}

/// Nothing of a queue goes to an account that is not the store's.
Task<Outbox::SendVerdict> Account::checkAccount()
{
    const QPointer<Account> self(this);
    if (!m_freshMe) {
        // A process that ends soon has asked once; asking again would use up its time.
        if (!m_options.livesOn && !isReachable())
            co_return Outbox::SendVerdict::away;
        co_await fetchMe();
        if (!self)
            co_return Outbox::SendVerdict::notOurs;
        if (!m_freshMe)
            co_return Outbox::SendVerdict::away;
    }
    if (m_freshMe->id != m_accountId)
        co_return Outbox::SendVerdict::notOurs;
    co_return Outbox::SendVerdict::allowed;
}

// The profile and the workspace

Task<> Account::updateMe(MeResponse me)
{
    const QPointer<Account> self(this);
    m_me = std::move(me);
    followTime();
    Q_EMIT meChanged();
    // Only a convenience for times without the server; a failure shows when something that matters is stored.
    if (self)
        co_await m_store->save(ProfileDocument::key, ProfileDocument{m_me});
}

Task<CallResult<void>> Account::refreshMe()
{
    const QPointer<Account> self(this);
    m_isMeMissed = true;
    auto me = co_await currentMe(self);
    if (!me)
        co_return failure(std::move(me.error()));
    if (!self)
        co_return CallResult<void>{};
    m_isMeMissed = false;
    m_freshMe = *me;
    if (m_outbox->isHeldBack() && me->id == m_accountId)
        m_outbox->flush();
    // Of another account nothing is shown; the outbox holds what waits back.
    if (me->id == m_accountId && m_me != *me)
        co_await updateMe(std::move(*me));
    co_return CallResult<void>{};
}

/// The profile's choices about time, wherever they count.
void Account::followTime()
{
    if (!m_tracker)
        return;
    PreferredTime preferred = preferredTime(m_me, m_options.zone);
    m_timeNotice = std::move(preferred.notice);
    m_tracker->setTime(preferred.time);
    if (m_dayTurn)
        m_dayTurn->setTime(std::move(preferred.time));
    const auto summary = std::ranges::find(m_me.workspaces, m_tracker->workspace().id, &WorkspaceSummary::id);
    if (summary != m_me.workspaces.end())
        m_tracker->setWorkspace(*summary);
}

Task<Result<void, AccountError>> Account::startTracking()
{
    if (makeTracker())
        co_return Result<void, AccountError>{};
    const std::string asked = m_options.workspace.value_or("");
    co_return failure(AccountError{AccountError::Kind::refused,
                                   asked.empty() ? std::string("This account has no workspace.")
                                                 : "This account has no workspace " + asked + "."});
}

/// The workspace asked for, else the one used last, else the account's default, else its first.
const WorkspaceSummary *Account::chosenWorkspace() const
{
    return workspaceInUse(m_me, m_options.workspace,
                          m_access->installation().workspace(server(), m_accountId));
}

bool Account::makeTracker()
{
    const WorkspaceSummary *workspace = chosenWorkspace();
    if (workspace == nullptr)
        return false;
    PreferredTime preferred = preferredTime(m_me, m_options.zone);
    m_timeNotice = std::move(preferred.notice);
    const std::unique_ptr<Tracker> before = std::move(m_tracker);
    const std::unique_ptr<AgentProposals> proposalsBefore = std::move(m_proposals);
    m_tracker = std::make_unique<Tracker>(Tracker::Parts{.workspace = *workspace,
                                                         .time = std::move(preferred.time),
                                                         .api = m_access->client(),
                                                         .store = m_store,
                                                         .outbox = m_outbox.get(),
                                                         .outcomes = m_outcomes.get(),
                                                         .newIdentifier = m_options.newIdentifier});
    m_proposals = std::make_unique<AgentProposals>(m_access->client(), *m_tracker);
    if (before)
        Q_EMIT trackerChanged();
    return true;
}

bool Account::useWorkspace(const std::string &id)
{
    if (std::ranges::find(m_me.workspaces, id, &WorkspaceSummary::id) == m_me.workspaces.end())
        return false;
    m_access->installation().setWorkspace(server(), m_accountId, id);
    m_options.workspace = id;
    return makeTracker();
}

// Living on

void Account::liveOn()
{
    m_dayTurn =
        std::make_unique<DayTurn>(time(), m_options.wallTimer ? m_options.wallTimer() : makeWallTimer());
    connect(m_dayTurn.get(), &DayTurn::turned, this, [this] {
        m_tracker->turnDay();
        refreshMe();
    });
    // A store in memory, as under a simulator, is nobody else's.
    if (!m_options.store.executor) {
        m_storeWatch = std::make_unique<StoreWatch>(m_store, storePath());
        connect(m_storeWatch.get(), &StoreWatch::changedElsewhere, this, [this] { takeFromStore(); });
    }
    m_retry = makeRetryTimer();
    m_connectivity = std::make_unique<Connectivity>();
    m_connectivity->onOnline = [this] {
        Q_EMIT networkCameBack();
        catchUp();
    };
    connect(m_connectivity.get(), &Connectivity::isOnlineChanged, this, [this] {
        // The server on this computer needs no network.
        if (!m_connectivity->isOnline() && !isLocal())
            state().noteSilence("This computer is not connected to a network.");
    });
    connect(&state(), &AccountState::cameBack, this, &Account::catchUp);
    connect(&state(), &AccountState::changed, this, &Account::tryAgainLater);
    connect(this, &Account::trackerChanged, this, &Account::followTracker);
    followTracker();
    if (!m_freshMe && isReachable())
        refreshMe();
}

void Account::followTracker()
{
    connect(m_tracker.get(), &Tracker::missedChanged, this, &Account::tryAgainLater);
    tryAgainLater();
}

/// The server may be back, or is: what waits is sent, and what could not be had is asked for.
void Account::catchUp()
{
    m_outbox->flush();
    if (!m_freshMe || m_isMeMissed)
        refreshMe();
    m_tracker->refreshMissed();
}

/// Another process of this computer has changed something: shown from the store at once, and as the server
/// has it afterwards.
Task<> Account::takeFromStore()
{
    const QPointer<Account> self(this);
    co_await m_outbox->readStored();
    if (!self || !m_retry)
        co_return;
    co_await m_tracker->loadSnapshot();
    if (!self || !m_retry)
        co_return;
    m_outbox->flush();
    if (isReachable()) {
        refreshMe();
        m_tracker->refresh(allTopics);
    }
}

/// While the server is away, or something could not be had, somebody has to ask again; for changes that wait,
/// the outbox does.
void Account::tryAgainLater()
{
    if (!m_retry)
        return; // closing
    // Behind the address another server, with another account, may answer when it is back.
    if (!isReachable())
        m_freshMe.reset();
    const bool isOver = state().kind() == AccountState::Kind::sessionEnded;
    if (isOver || (isReachable() && !m_tracker->missed())) {
        m_failures = 0;
        m_retry->cancel();
        m_nextTry.reset();
    } else if (!m_nextTry) {
        const auto delay = retryDelay(++m_failures);
        m_nextTry = AppClock::now() + delay;
        m_retry->schedule(delay, [this] {
            m_nextTry.reset();
            tryOnce();
        });
    }
    tellNextTry();
}

Task<> Account::tryOnce()
{
    const QPointer<Account> self(this);
    // The queue asks by itself while it has something to send.
    if (!m_outbox->isOffline() || !m_outbox->nextTry())
        co_await refreshMe();
    if (self && m_retry && isReachable())
        co_await m_tracker->refreshMissed();
    if (self)
        tryAgainLater();
}

void Account::tellNextTry()
{
    const auto &sending = m_outbox->nextTry();
    state().setNextTry(sending && (!m_nextTry || *sending < *m_nextTry) ? sending : m_nextTry);
}

// The end

Task<Result<void, AccountError>> Account::signOut()
{
    if (isAutomatic())
        co_return failure(
            AccountError{AccountError::Kind::refused,
                         "The account on this computer signs in by itself; there is no sign-in to end."});
    const auto access = m_access;
    co_return co_await access->signOut();
}

Task<> Account::close()
{
    disconnect(&state(), nullptr, this, nullptr);
    m_storeWatch.reset();
    m_dayTurn.reset();
    m_connectivity.reset();
    m_retry.reset();
    m_access->close();
    if (m_outbox)
        co_await m_outbox->close();
    if (m_tracker)
        co_await m_tracker->close();
    // Answers that were on their way back are taken before their receivers go.
    co_await m_access->settle();
}

} // namespace orvane
