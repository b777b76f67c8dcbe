// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/Account.h"

#include "Account/AccountStores.h"
#include "Account/PreferredTime.h"
#include "Account/ProfileDocument.h"
#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "LocalServer/LocalAccount.h"
#include "LocalServer/LocalServerLink.h"
#include "LocalStore/LocalStore.h"
#include "Outbox/OutboxRules.h"
#include "Session/AuthSession.h"
#include "Session/MemoryTokenStore.h"
#include "Session/TokenStoreChoice.h"
#include "Time/SystemZone.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSysInfo>
#include <QTimer>
#include <algorithm>

namespace orvane {

namespace {

/// How long before the end of the patience a pass over the queue is asked to end. A server that is only busy
/// with a long queue answers the request in flight by then, and is not taken for one that is away.
constexpr std::chrono::milliseconds windDown{300};

AccountError refusedBy(const CallError &error)
{
    const auto *problem = std::get_if<APIError>(&error);
    if (problem == nullptr)
        return {AccountError::Kind::Unreachable, describe(error), error};
    const auto kind = problem->status == 401 ? AccountError::Kind::SignedOut : AccountError::Kind::Refused;
    return {kind, describe(error), error};
}

std::string deviceName()
{
    return QSysInfo::machineHostName().toStdString();
}

std::string besideThisProgram(const std::string &program)
{
    return (QCoreApplication::applicationDirPath() + QLatin1Char('/')).toStdString() + program;
}

RegisterRequest registration(const Account::Credentials &credentials)
{
    RegisterRequest request;
    request.email = credentials.email;
    request.password = credentials.password;
    if (auto zone = systemZone())
        request.timeZone = std::move(*zone);
    return request;
}

} // namespace

Account::Account(Options options) : m_options(std::move(options)) {}

Account::~Account() = default;

Task<Result<std::unique_ptr<Account>, AccountError>> Account::open(Options options)
{
    std::unique_ptr<Account> account(new Account(std::move(options)));
    if (auto found = co_await account->findServer(); !found)
        co_return failure(std::move(found.error()));
    co_await account->makeClient();
    auto opened = co_await account->openKnown();
    if (!opened) {
        co_await account->close();
        co_return failure(std::move(opened.error()));
    }
    co_return account;
}

Task<Result<std::unique_ptr<Account>, AccountError>> Account::signIn(Options options, Credentials credentials)
{
    std::unique_ptr<Account> account(new Account(std::move(options)));
    if (auto found = co_await account->findServer(); !found)
        co_return failure(std::move(found.error()));
    account->m_isAutomatic = false;
    co_await account->makeClient();
    auto opened = co_await account->openWith(std::move(credentials));
    if (!opened) {
        co_await account->close();
        co_return failure(std::move(opened.error()));
    }
    account->m_options.installation->setCurrentServer(account->m_server);
    co_return account;
}

// The server

/// Settles which server this is about, and finds or starts it when it is the one on this computer.
Task<Result<void, AccountError>> Account::findServer()
{
    Installation &installation = *m_options.installation;
    std::string problem;
    if (!installation.makeFolder(problem))
        co_return failure(AccountError{AccountError::Kind::Store, problem, {}});
    m_network = std::make_shared<NetworkThread>();
    if (isKnown())
        startPatience();
    const auto wanted = m_options.server ? m_options.server : installation.currentServer();
    const auto local = installation.localServer();
    m_isLocal = !wanted || wanted == local;
    // Somebody may also sign in to the server on this computer with an e-mail address; then it is the current
    // one.
    m_isAutomatic = m_isLocal && !(local && installation.currentServer() == local);
    m_server = wanted.value_or(local.value_or(""));
    m_isReachable = true;
    if (!m_isLocal)
        co_return Result<void, AccountError>{};
    co_return co_await findLocalServer();
}

Task<Result<void, AccountError>> Account::findLocalServer()
{
    Installation &installation = *m_options.installation;
    const std::string program =
        m_options.serverProgram.empty() ? besideThisProgram("orvane-server") : m_options.serverProgram;
    m_link = LocalServerLink::make(*m_network, {.folder = installation.serverFolder(), .program = program});
    countPatience();
    auto hello = m_options.startsServer ? co_await m_link->ensureRunning() : co_await m_link->hello();
    if (!hello) {
        m_isReachable = false;
        m_unreachableReason = describe(hello.error());
        if (m_server.empty())
            co_return failure(AccountError{AccountError::Kind::Unreachable, m_unreachableReason, {}});
        co_return Result<void, AccountError>{};
    }
    const auto before = installation.localServer();
    m_server = hello->address;
    if (before && *before != m_server)
        co_return moveLocalStores(*before);
    installation.setLocalServer(m_server);
    co_return Result<void, AccountError>{};
}

/// The server on this computer got another port (its folder is a new one, or was put back): the names of its
/// stores follow, those of accounts that it does not know now included. They are there when it does again.
Result<void, AccountError> Account::moveLocalStores(const std::string &before)
{
    Installation &installation = *m_options.installation;
    const auto accounts = accountsWithStore(installation.root(), before);
    if (const auto moved = moveStores(installation.root(), before, m_server); !moved)
        return failure(AccountError{AccountError::Kind::Store, describe(moved.error()), {}});
    for (const std::string &account : accounts) {
        if (const auto workspace = installation.workspace(before, account))
            installation.setWorkspace(m_server, account, *workspace);
    }
    if (const auto account = installation.account(before))
        installation.setAccount(m_server, account);
    if (installation.currentServer() == before)
        installation.setCurrentServer(m_server);
    installation.setLocalServer(m_server);
    return {};
}

Task<> Account::makeClient()
{
    const Installation &installation = *m_options.installation;
    AuthSessionOptions options{.server = m_server, .tokenStore = {}, .deviceName = deviceName()};
    std::shared_ptr<HttpTransport> transport = m_network->transport();
    if (m_isLocal)
        transport =
            std::make_shared<LocalServerTransport>(m_link, std::move(transport), m_options.startsServer);
    if (m_isAutomatic) {
        options.tokenStore = std::make_shared<MemoryTokenStore>();
        options.reauthenticator =
            localReauthenticator(m_link, systemZone().value_or("UTC"), m_options.startsServer);
    } else {
        auto choice = co_await makeTokenStore(
            *m_network, installation.hasOwnFolder() ? std::optional{installation.root()} : std::nullopt);
        options.tokenStore = std::move(choice.store);
        options.lockPath = installation.root() + "/session.lock";
        m_tokenNotice = choice.warning.value_or("");
    }
    m_session = AuthSession::make(*m_network, transport, std::move(options));
    m_client = std::make_shared<OrvaneClient>(m_network, m_session, transport);
    if (!m_patience)
        startPatience();
}

/// Whether there is an account to go on with when the server does not answer.
bool Account::isKnown() const
{
    const Installation &installation = *m_options.installation;
    const auto local = installation.localServer();
    const auto server = m_options.server ? m_options.server : installation.currentServer();
    return installation.account(server.value_or(local.value_or(""))).has_value();
}

void Account::startPatience()
{
    if (m_options.patience.count() == 0)
        return;
    m_windDown = std::make_unique<QTimer>();
    m_patience = std::make_unique<QTimer>();
    for (QTimer *timer : {m_windDown.get(), m_patience.get()}) {
        timer->setSingleShot(true);
        timer->setTimerType(Qt::PreciseTimer);
    }
    connect(m_windDown.get(), &QTimer::timeout, this, &Account::endPass);
    connect(m_patience.get(), &QTimer::timeout, this, &Account::giveUp);
    countPatience();
}

/// From now on.
void Account::countPatience()
{
    if (!m_patience)
        return;
    m_windDown->start(std::max(m_options.patience - windDown, std::chrono::milliseconds{0}));
    m_patience->start(m_options.patience);
    if (m_link)
        m_link->giveUpAt(std::chrono::steady_clock::now() + m_options.patience);
}

void Account::restartPatience()
{
    if (m_patience && m_patience->isActive() && !m_isWindingDown)
        countPatience();
}

void Account::endPass()
{
    m_isWindingDown = true;
    if (m_outbox)
        m_outbox->close();
}

void Account::giveUp()
{
    m_isReachable = false;
    m_unreachableReason = "The server did not answer in time.";
    closeTransport();
}

void Account::closeTransport()
{
    QMetaObject::invokeMethod(
        m_network->executor(), [transport = m_network->transport()] { transport->close(); },
        Qt::QueuedConnection);
}

// The account

/// Opens the account that was signed in to before; with the server away it is opened as it was last known.
Task<Result<void, AccountError>> Account::openKnown()
{
    Installation &installation = *m_options.installation;
    const auto known = installation.account(m_server);
    if (!known && !m_isReachable)
        co_return failure(AccountError{AccountError::Kind::Unreachable, m_unreachableReason, {}});
    // The file and the server are asked at the same time: the account is nearly always the one it was.
    std::optional<Task<Result<void, AccountError>>> opening;
    if (known)
        opening = openStore(*known);
    if (m_isReachable)
        co_await fetchMe();
    if (opening) {
        if (auto opened = co_await *opening; !opened)
            co_return failure(std::move(opened.error()));
    }
    if (m_hasFreshMe)
        co_return co_await finishOpening();
    if (!known || !m_hasProfile || isSessionOver())
        co_return failure(co_await whyUnknown());
    makeTracker();
    co_return selectWorkspace();
}

/// Why there is no account to go on with. A store that cannot be read is not one that lacks the profile.
Task<AccountError> Account::whyUnknown()
{
    if (m_store && !m_hasProfile && !isSessionOver()) {
        if (const auto readable = co_await readThrough(*m_store); !readable)
            co_return AccountError{AccountError::Kind::Store, describe(readable.error()), {}};
    }
    if (m_meError)
        co_return refusedBy(*m_meError);
    co_return AccountError{AccountError::Kind::Unreachable, m_unreachableReason, {}};
}

Task<Result<void, AccountError>> Account::openWith(Credentials credentials)
{
    auto signedIn = credentials.registers
                        ? co_await m_session->registerAccount(registration(credentials))
                        : co_await m_session->login(credentials.email, credentials.password);
    if (!signedIn)
        co_return failure(refusedBy(signedIn.error()));
    co_await fetchMe();
    if (!m_hasFreshMe)
        co_return failure(refusedBy(*m_meError));
    co_return co_await finishOpening();
}

Task<> Account::fetchMe()
{
    auto me = co_await m_client->getMe();
    if (me) {
        m_isReachable = true;
        m_hasFreshMe = true;
        m_freshMe = std::move(*me);
        co_return;
    }
    m_meError = std::move(me.error());
    // A refusal is an answer; a server that says to try later counts as away like one that says nothing.
    if (!isSessionOver() && classify(*m_meError) == FailureKind::Transient) {
        m_isReachable = false;
        m_unreachableReason = describe(*m_meError);
    }
}

bool Account::isSessionOver() const
{
    const auto *problem = m_meError ? std::get_if<APIError>(&*m_meError) : nullptr;
    return problem != nullptr && problem->status == 401;
}

/// With the server's word on who this is: the store is that account's, and the profile is kept for later.
Task<Result<void, AccountError>> Account::finishOpening()
{
    if (m_accountId != m_freshMe.id) {
        m_outbox.reset();
        if (auto opened = co_await openStore(m_freshMe.id); !opened)
            co_return failure(std::move(opened.error()));
    }
    m_options.installation->setAccount(m_server, m_freshMe.id);
    if (!m_hasProfile || m_me != m_freshMe)
        co_await updateMe(m_freshMe);
    makeTracker();
    co_return selectWorkspace();
}

Task<Result<void, AccountError>> Account::openStore(std::string accountId)
{
    auto opened =
        co_await LocalStore::open(LocalStore::filePath(m_options.installation->root(), m_server, accountId));
    if (!opened)
        co_return failure(AccountError{AccountError::Kind::Store, describe(opened.error()), {}});
    m_store = std::move(*opened);
    m_accountId = std::move(accountId);
    auto profile = co_await m_store->load<ProfileDocument>(ProfileDocument::key);
    m_hasProfile = profile.has_value();
    if (profile)
        m_me = std::move(profile->me);
    Outbox::Parts parts;
    parts.api = m_client;
    parts.store = m_store;
    parts.lockPath = storePath() + ".lock";
    parts.mayBeSent = [this] { return checkAccount(); };
    if (m_options.patience.count() > 0)
        parts.lockPatience = m_options.patience;
    m_outbox = co_await Outbox::make(std::move(parts));
    co_return Result<void, AccountError>{};
}

std::string Account::storePath() const
{
    return LocalStore::filePath(m_options.installation->root(), m_server, m_accountId);
}

/// Nothing of a queue goes to an account that is not the store's.
Task<Outbox::SendVerdict> Account::checkAccount()
{
    const QPointer<Account> self(this);
    if (!m_hasFreshMe) {
        // Who waits only so long has asked once; asking again would use up the rest.
        if (m_patience && !m_isReachable)
            co_return Outbox::SendVerdict::Away;
        co_await fetchMe();
        if (!self)
            co_return Outbox::SendVerdict::NotOurs;
        if (!m_hasFreshMe)
            co_return Outbox::SendVerdict::Away;
    }
    if (m_freshMe.id != m_accountId)
        co_return Outbox::SendVerdict::NotOurs;
    co_return Outbox::SendVerdict::Allowed;
}

Task<> Account::updateMe(MeResponse me)
{
    m_me = std::move(me);
    // Only a convenience for times without the server; a failure shows when something that matters is stored.
    co_await m_store->save(ProfileDocument::key, ProfileDocument{m_me});
}

// The workspace

Result<void, AccountError> Account::selectWorkspace()
{
    if (m_tracker)
        return {};
    const std::string asked = m_options.workspace.value_or("");
    return failure(AccountError{AccountError::Kind::Refused,
                                asked.empty() ? std::string("This account has no workspace.")
                                              : "This account has no workspace " + asked + ".",
                                {}});
}

/// The workspace asked for, else the one used last, else the account's default, else its first.
const WorkspaceSummary *Account::chosenWorkspace() const
{
    const auto named = [this](const std::optional<std::string> &id) -> const WorkspaceSummary * {
        const auto found = std::ranges::find(m_me.workspaces, id.value_or(""), &WorkspaceSummary::id);
        return found == m_me.workspaces.end() ? nullptr : &*found;
    };
    if (m_options.workspace)
        return named(m_options.workspace);
    if (const auto *last = named(m_options.installation->workspace(m_server, m_accountId)))
        return last;
    if (const auto *usual = named(m_me.defaultWorkspaceId))
        return usual;
    return m_me.workspaces.empty() ? nullptr : &m_me.workspaces.front();
}

void Account::makeTracker()
{
    m_tracker.reset();
    const PreferredTime preferred = preferredTime(m_me, m_options.zone);
    m_timeNotice = preferred.notice;
    if (const WorkspaceSummary *workspace = chosenWorkspace())
        m_tracker = std::make_unique<Tracker>(
            Tracker::Parts{*workspace, preferred.time, m_client, m_store, m_outbox.get()});
}

bool Account::useWorkspace(const std::string &id)
{
    if (std::ranges::find(m_me.workspaces, id, &WorkspaceSummary::id) == m_me.workspaces.end())
        return false;
    m_options.installation->setWorkspace(m_server, m_accountId, id);
    m_options.workspace = id;
    makeTracker();
    return true;
}

// The end

Task<Result<void, AccountError>> Account::signOut()
{
    if (m_isAutomatic)
        co_return failure(
            AccountError{AccountError::Kind::Refused,
                         "The account on this computer signs in by itself; there is no sign-in to end.",
                         {}});
    if (auto ended = co_await endSession(); !ended)
        co_return failure(std::move(ended.error()));
    leaveServer();
    co_return Result<void, AccountError>{};
}

Task<Result<void, AccountError>> Account::leaveEndedSession(Options options)
{
    std::unique_ptr<Account> account(new Account(std::move(options)));
    if (auto found = co_await account->findServer(); !found)
        co_return failure(std::move(found.error()));
    co_await account->makeClient();
    auto ended = account->m_isAutomatic ? Result<void, AccountError>{} : co_await account->endSession();
    if (ended)
        account->leaveServer();
    co_await account->close();
    co_return std::move(ended);
}

/// As long as the server has not been told, the session goes on: what is recorded next would otherwise go to
/// an account that nobody asked for.
Task<Result<void, AccountError>> Account::endSession()
{
    const auto ended = co_await m_session->signOut();
    if (ended)
        co_return Result<void, AccountError>{};
    AccountError error = refusedBy(ended.error());
    error.message += " You are still signed in.";
    co_return failure(std::move(error));
}

void Account::leaveServer()
{
    if (m_options.installation->currentServer() == m_server)
        m_options.installation->setCurrentServer(std::nullopt);
}

Task<> Account::close()
{
    m_windDown.reset();
    m_patience.reset();
    if (!m_network)
        co_return;
    closeTransport();
    if (m_outbox)
        co_await m_outbox->close();
    if (m_tracker)
        co_await m_tracker->close();
    // Answers that were on their way back are taken before their receivers go.
    co_await m_network->run([]() -> Task<bool> { co_return true; });
}

} // namespace orvane
