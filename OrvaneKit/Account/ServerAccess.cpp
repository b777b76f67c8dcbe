// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/ServerAccess.h"

#include "Account/AccountStores.h"
#include "Account/ObservedTransport.h"
#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "LocalServer/LocalAccount.h"
#include "LocalServer/LocalServerLink.h"
#include "Session/MemoryTokenStore.h"
#include "Time/SystemZone.h"

#include <QCoreApplication>
#include <QPointer>
#include <QSysInfo>

namespace orvane {

namespace {

std::string deviceName()
{
    return QSysInfo::machineHostName().toStdString();
}

std::string besideThisProgram(const std::string &program)
{
    return (QCoreApplication::applicationDirPath() + QLatin1Char('/')).toStdString() + program;
}

} // namespace

ServerAccess::ServerAccess(Options options)
    : m_options(std::move(options))
    , m_network(m_options.network ? m_options.network : std::make_shared<NetworkThread>())
{
}

ServerAccess::~ServerAccess() = default;

bool ServerAccess::isKnown() const
{
    const Installation &installation = *m_options.installation;
    const auto local = installation.localServer();
    const auto server = m_options.server ? m_options.server : installation.currentServer();
    return installation.account(server.value_or(local.value_or(""))).has_value();
}

// The server

Task<Result<void, AccountError>> ServerAccess::find()
{
    Installation &installation = *m_options.installation;
    std::string problem;
    if (!installation.makeFolder(problem))
        co_return failure(AccountError{AccountError::Kind::store, problem});
    const auto wanted = m_options.server ? m_options.server : installation.currentServer();
    const auto local = installation.localServer();
    m_isLocal = !m_options.transport && (!wanted || wanted == local);
    // Somebody may also sign in to the server on this computer with an e-mail address; then it is the current
    // one.
    m_isAutomatic =
        !m_options.isForSignIn &&
        ((m_isLocal && !(local && installation.currentServer() == local)) || m_options.reauthenticator);
    m_address = wanted.value_or(local.value_or(""));
    if (m_isLocal) {
        if (auto found = co_await findLocal(); !found)
            co_return failure(std::move(found.error()));
    }
    co_await makeClient();
    co_return Result<void, AccountError>{};
}

Task<Result<void, AccountError>> ServerAccess::findLocal()
{
    Installation &installation = *m_options.installation;
    const std::string program =
        m_options.serverProgram.empty() ? besideThisProgram("orvane-server") : m_options.serverProgram;
    m_link = LocalServerLink::make(*m_network, {.folder = installation.serverFolder(), .program = program});
    m_link->giveUpAt(m_deadline);
    if (!waitsForServer() && !m_address.empty()) {
        m_looking = lookForMove(m_link);
        co_return Result<void, AccountError>{};
    }
    auto hello = m_options.startsServer ? co_await m_link->ensureRunning() : co_await m_link->hello();
    if (!hello) {
        m_state.noteSilence(describe(hello.error()));
        if (m_address.empty())
            co_return failure(AccountError{AccountError::Kind::unreachable, m_state.reason()});
        co_return Result<void, AccountError>{};
    }
    const auto before = installation.localServer();
    m_address = hello->address;
    if (before && *before != m_address)
        co_return moveLocalStores(*before);
    installation.setLocalServer(m_address);
    co_return Result<void, AccountError>{};
}

Task<> ServerAccess::lookForMove(std::shared_ptr<LocalServerLink> link)
{
    const QPointer<ServerAccess> self(this);
    const auto hello = m_options.startsServer ? co_await link->ensureRunning() : co_await link->hello();
    if (!self)
        co_return;
    if (!hello)
        m_state.noteSilence(describe(hello.error()));
    else if (hello->address != m_address)
        Q_EMIT moved();
}

/// The server on this computer got another port (its folder is a new one, or was put back): the names of its
/// stores follow, those of accounts that it does not know now included. They are there when it does again.
Result<void, AccountError> ServerAccess::moveLocalStores(const std::string &before)
{
    Installation &installation = *m_options.installation;
    const auto accounts = accountsWithStore(installation.root(), before);
    if (const auto moved = moveStores(installation.root(), before, m_address); !moved)
        return failure(AccountError{AccountError::Kind::store, describe(moved.error())});
    for (const std::string &account : accounts) {
        if (const auto workspace = installation.workspace(before, account))
            installation.setWorkspace(m_address, account, *workspace);
    }
    if (const auto account = installation.account(before))
        installation.setAccount(m_address, account);
    if (installation.currentServer() == before)
        installation.setCurrentServer(m_address);
    installation.setLocalServer(m_address);
    return {};
}

Task<> ServerAccess::makeClient()
{
    const Installation &installation = *m_options.installation;
    AuthSessionOptions options{.server = m_address, .tokenStore = {}, .deviceName = deviceName()};
    std::shared_ptr<HttpTransport> transport =
        m_options.transport ? m_options.transport : m_network->transport();
    if (m_isLocal)
        transport =
            std::make_shared<LocalServerTransport>(m_link, std::move(transport), m_options.startsServer);
    const auto echo = std::make_shared<ServerEcho>();
    connect(echo.get(), &ServerEcho::answered, &m_state, &AccountState::noteAnswer);
    connect(echo.get(), &ServerEcho::silent, &m_state,
            [this](const QString &reason) { m_state.noteSilence(reason.toStdString()); });
    connect(echo.get(), &ServerEcho::turnedAway, &m_state,
            [this](const QString &reason) { m_state.noteTurnedAway(reason.toStdString()); });
    transport = std::make_shared<ObservedTransport>(std::move(transport), echo);
    if (m_isAutomatic) {
        options.tokenStore = std::make_shared<MemoryTokenStore>();
        options.reauthenticator =
            m_options.reauthenticator
                ? m_options.reauthenticator
                : localReauthenticator(m_link, systemZone().value_or("UTC"), m_options.startsServer);
    } else {
        auto choice = co_await makeTokenStore(*m_network,
                                              installation.keychainFolder(m_address, m_options.isForSignIn));
        options.tokenStore = std::move(choice.store);
        options.lockPath = installation.root() + "/session.lock";
        m_tokenPlace = choice.place;
        m_tokenNotice = choice.notice.value_or("");
    }
    m_session = AuthSession::make(*m_network, transport, std::move(options));
    m_session->onSessionEnded(this, [this] { m_state.noteSessionEnd(); });
    m_client = std::make_shared<OrvaneClient>(m_network, m_session, transport);
}

Task<Result<ServerAccess::Proven, ConnectionError>> ServerAccess::proven(HttpRequest request)
{
    if (!m_link)
        co_return Proven{m_address, std::move(request)};
    const auto link = m_link;
    const auto server = co_await link->provenServer(m_options.startsServer);
    if (!server)
        co_return failure(connectionError(server.error()));
    co_return Proven{server->address, withProof(*server, std::move(request)).request};
}

// The session's end

/// As long as the server has not been told, the session goes on: what is recorded next would otherwise go to
/// an account that nobody asked for.
Task<Result<void, AccountError>> ServerAccess::signOut()
{
    if (!m_isAutomatic) {
        const auto ended = co_await m_session->signOut();
        if (!ended) {
            AccountError error = AccountError::of(ended.error());
            error.message += " You are still signed in.";
            co_return failure(std::move(error));
        }
    }
    if (m_options.installation->currentServer() == m_address)
        m_options.installation->setCurrentServer(std::nullopt);
    m_options.installation->noteSignOut(m_address);
    m_state.noteSignedOut();
    co_return Result<void, AccountError>{};
}

void ServerAccess::giveUpAt(std::chrono::steady_clock::time_point deadline)
{
    m_deadline = deadline;
    if (m_link)
        m_link->giveUpAt(deadline);
}

void ServerAccess::giveUp(const std::string &reason)
{
    m_state.giveUp(reason);
    close();
}

void ServerAccess::close()
{
    // A request that ends now is not to ask for the server once more.
    giveUpAt(std::chrono::steady_clock::now());
    QMetaObject::invokeMethod(
        m_network->executor(), [transport = m_network->transport()] { transport->close(); },
        Qt::QueuedConnection);
}

Task<> ServerAccess::settle()
{
    if (m_looking)
        co_await *m_looking;
    co_await m_network->run([]() -> Task<bool> { co_return true; });
}

} // namespace orvane
