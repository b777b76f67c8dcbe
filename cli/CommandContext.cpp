// SPDX-License-Identifier: GPL-3.0-or-later
#include "CommandContext.h"

#include "Account/AccountStores.h"
#include "Output/EntryText.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TextWidth.h"

#include <unistd.h>

namespace orvane {

namespace {

/// How long a command waits for the server before it goes on without it; it is over within 3 s then.
constexpr std::chrono::milliseconds patienceLength{2800};

constexpr std::string_view offline = "Offline";

} // namespace

CommandContext::CommandContext(GlobalOptions options)
    : m_options(std::move(options))
    , m_style(TerminalStyle::of(STDOUT_FILENO))
    , m_installation(m_options.dataFolder)
    , m_patience(patienceLength)
{
    connect(&m_patience, &Patience::windingDown, this, [this] {
        if (m_account)
            m_account->outbox().close();
    });
}

CommandContext::~CommandContext() = default;

/// The server that the options name, with the patience counting.
Task<Result<std::shared_ptr<ServerAccess>, AccountError>> CommandContext::findServer(Patience &patience,
                                                                                     bool isForSignIn)
{
    const auto access =
        std::make_shared<ServerAccess>(ServerAccess::Options{.installation = &m_installation,
                                                             .server = m_options.server,
                                                             .startsServer = m_options.startsServer,
                                                             .isForSignIn = isForSignIn});
    // Who signs in has nothing to go on with: as for an account that is not known, finding the server does
    // not count.
    const bool isKnown = !isForSignIn && access->isKnown();
    if (isKnown)
        patience.begin(access);
    if (auto found = co_await access->find(); !found)
        co_return failure(std::move(found.error()));
    if (!isKnown)
        patience.begin(access);
    co_return access;
}

Task<Account::Opened> CommandContext::openWithin(Patience &patience, std::optional<SignIn> way)
{
    auto access = co_await findServer(patience, way.has_value());
    if (!access)
        co_return failure(std::move(access.error()));
    m_tokenPlace = (*access)->tokenPlace();
    Account::Options options{.workspace = m_options.workspace,
                             .zone = m_options.zone,
                             .livesOn = false,
                             .lockPatience = patience.length()};
    if (way)
        co_return co_await Account::signIn(*access, std::move(options), std::move(*way));
    co_return co_await Account::open(*access, std::move(options));
}

Task<Account::Opened> CommandContext::openApart(Patience &patience)
{
    return openWithin(patience, std::nullopt);
}

Task<Result<Account *, CommandFailure>> CommandContext::openAccount()
{
    if (m_account)
        co_return account();
    const bool isFirst =
        !m_options.server && !m_installation.currentServer() && !m_installation.localServer();
    m_progress.begin(isFirst && m_options.startsServer ? "Starting the server on this computer …"
                                                       : "Waiting for the server …");
    auto opened = co_await openWithin(m_patience, std::nullopt);
    m_progress.finish();
    co_return co_await adopt(std::move(opened), false);
}

Task<Result<Account *, CommandFailure>> CommandContext::openToStay()
{
    m_moment.reset();
    m_stays = true;
    m_progress.begin("Waiting for the server …");
    const auto access =
        std::make_shared<ServerAccess>(ServerAccess::Options{.installation = &m_installation,
                                                             .server = m_options.server,
                                                             .startsServer = m_options.startsServer,
                                                             .waitsForServer = false});
    Account::Opened opened;
    if (auto found = co_await access->find(); !found)
        opened = failure(std::move(found.error()));
    else
        opened = co_await Account::open(
            access, {.workspace = m_options.workspace, .zone = m_options.zone, .livesOn = false});
    m_tokenPlace = access->tokenPlace();
    m_progress.finish();
    co_return co_await adopt(std::move(opened), false);
}

Task<Result<ServerResponse, CommandFailure>> CommandContext::meetServer(std::string address)
{
    m_options.server = std::move(address);
    Patience patience(patienceLength);
    m_progress.begin("Waiting for the server …");
    const auto access = co_await findServer(patience, true);
    if (!access) {
        m_progress.finish();
        co_return failure(CommandFailure::of(access.error()));
    }
    const bool isKept = (*access)->tokenPlace() != TokenPlace::memory;
    const auto met = isKept ? co_await (*access)->session()->getServer() : CallResult<ServerResponse>();
    patience.end();
    (*access)->close();
    co_await (*access)->settle();
    m_progress.finish();
    if (!isKept)
        co_return failure(CommandFailure::of(
            "A sign-in cannot be kept here: there is no keychain, and the kernel's keyring cannot be used "
            "either, as in many containers. Nothing was sent."));
    if (!met)
        co_return failure(CommandFailure::of(met.error()));
    co_return ServerResponse(*met);
}

Task<Result<Account *, CommandFailure>> CommandContext::signIn(SignIn way)
{
    m_progress.begin("Signing in …");
    auto opened = co_await openWithin(m_patience, std::move(way));
    m_progress.finish();
    co_return co_await adopt(std::move(opened), true);
}

Task<Result<void, CommandFailure>> CommandContext::leaveEndedSession()
{
    auto access = co_await findServer(m_patience, false);
    if (!access)
        co_return failure(CommandFailure::of(access.error()));
    const auto left = co_await (*access)->signOut();
    (*access)->close();
    co_await (*access)->settle();
    if (!left)
        co_return failure(CommandFailure::of(left.error()));
    co_return Result<void, CommandFailure>{};
}

Task<Result<Account *, CommandFailure>> CommandContext::adopt(Account::Opened opened, bool isSigningIn)
{
    if (!opened) {
        m_openError = opened.error().kind;
        // Nobody asked the server: no token was found, which may lie where this process cannot look.
        m_isSignInUnseen =
            m_tokenPlace != TokenPlace::keychain && opened.error().error == CallError(sessionEndedError());
        auto problem = CommandFailure::of(opened.error());
        if (!isSigningIn)
            problem.message += wayBack(opened.error());
        co_return failure(std::move(problem));
    }
    m_account = std::move(*opened);
    if (!m_patience.lasts())
        m_account->outbox().close();
    if (auto readable = co_await checkQueue(); !readable) {
        m_openError = AccountError::Kind::store;
        co_await m_account->close();
        m_account.reset();
        co_return failure(std::move(readable.error()));
    }
    co_await m_account->tracker().loadSnapshot();
    const std::string kept = isSigningIn ? m_account->access().tokenNotice() : "";
    for (const std::string &notice : {kept, m_account->timeNotice()}) {
        if (!notice.empty())
            writeMessage(printable(notice));
    }
    co_return account();
}

/// How to get out of an account's not being open.
std::string CommandContext::wayBack(const AccountError &error) const
{
    using Kind = AccountError::Kind;
    const auto current = m_installation.currentServer();
    const auto server = m_options.server ? m_options.server : current;
    if (!server)
        return {};
    if (error.kind == Kind::unreachable)
        return " The server is " + *server + ".";
    if (error.kind != Kind::signedOut && error.kind != Kind::neverSignedIn)
        return {};
    const std::string named = m_options.server ? "--server " + *server + " " : "";
    const std::string signIn =
        " To sign in" + (named.empty() ? " at " + *server : "") + ": orvane " + named + "login.";
    return (m_isSignInUnseen ? " A sign-in that lies in a keychain cannot be read here." : "") + signIn +
           (server == current ? " To go back to the account on this computer: orvane logout." : "");
}

/// The outbox takes a queue that cannot be read for an empty one, which would be told as "nothing waits".
Task<Result<void, CommandFailure>> CommandContext::checkQueue()
{
    const auto rows = co_await queuedRows(m_account->store());
    if (!rows)
        co_return failure(CommandFailure::of(rows.error()));
    // Another process may have sent some since: what it took away was readable.
    if (*rows > static_cast<std::int64_t>(m_account->outbox().pending().size())) {
        auto unreadable = co_await unreadableRows(m_account->store());
        if (!unreadable)
            co_return failure(CommandFailure::of(unreadable.error()));
        m_unreadable = std::move(*unreadable);
    }
    co_return Result<void, CommandFailure>{};
}

Task<> CommandContext::flush()
{
    return sendQueue(true);
}

Task<> CommandContext::sendQueue(bool restartsPatience)
{
    Outbox &outbox = m_account->outbox();
    if (outbox.pending().empty() || !m_account->isReachable())
        co_return;
    const auto all = static_cast<std::int64_t>(outbox.pending().size());
    m_progress.begin("Sending changes");
    m_progress.setProgress(0, all);
    const auto advance = [this, all, restartsPatience] {
        const auto left = static_cast<std::int64_t>(m_account->outbox().pending().size());
        m_progress.setProgress(all - std::min(left, all), all);
        // Each answer shows that the server is there; only silence uses the patience up.
        if (restartsPatience)
            m_patience.restart();
    };
    const auto connection = connect(&outbox, &Outbox::pendingChanged, this, advance);
    co_await outbox.flush();
    disconnect(connection);
    m_progress.finish();
}

Task<> CommandContext::bringUpToDate()
{
    co_await loadState();
    if (m_account->outbox().pending().empty())
        co_return;
    const std::size_t before = m_account->outbox().pending().size();
    co_await sendQueue(false);
    // What was sent may have done more at the server than to the entries themselves.
    if (m_account->outbox().pending().size() < before && m_patience.lasts())
        co_await loadState();
}

Task<> CommandContext::loadState()
{
    if (!m_account->isReachable())
        co_return;
    m_progress.begin("Waiting for the server …");
    co_await m_account->tracker().load();
    m_progress.finish();
}

Task<> CommandContext::showRefusals()
{
    // Nobody reads them now; they are kept for who does.
    if (json())
        co_return;
    auto refusals = co_await m_account->outbox().unshownRefusals();
    if (refusals.empty())
        co_return;
    const EntryWriter writer(m_account->tracker(), TerminalStyle::of(STDERR_FILENO));
    for (const Refusal &refusal : refusals)
        writeMessage(writer.refusal(refusal));
    const auto marked = co_await m_account->outbox().markShown(std::move(refusals));
    if (!marked)
        writeMessage(describe(marked.error()));
}

/// Why changes are not sent: nothing where the server answers.
std::string CommandContext::whyAway() const
{
    const AccountState &state = m_account->state();
    if (state.isReachable())
        return {};
    if (!state.isTurnedAway())
        return m_tokenPlace == TokenPlace::silentKeychain ? "The keychain does not answer"
                                                          : std::string(offline);
    return state.reason().substr(0, state.reason().find_last_not_of('.') + 1);
}

void CommandContext::showQueue()
{
    const EntryWriter writer(m_account->tracker(), TerminalStyle::of(STDERR_FILENO));
    for (const Outbox::Pending &pending : m_account->outbox().conflicts())
        writeMessage(writer.conflict(pending));
    if (!m_unreadable.empty())
        writeMessage(
            unreadableMessage(static_cast<std::int64_t>(m_unreadable.size()), m_account->storePath()));
    const std::string message = queueMessage(m_account->outbox(), m_account->isReachable(), whyAway());
    if (!message.empty())
        writeMessage(message);
    else if (whyAway() == offline)
        writeMessage(std::string(offline) + ": the server cannot be reached; this is what was known last.");
    else if (!whyAway().empty())
        writeMessage(whyAway() + "; this is what was known last.");
}

Task<bool> CommandContext::lookBeside()
{
    const auto waiting =
        co_await waitingBeside(m_installation.root(), m_account->server(), m_account->me().id);
    for (const WaitingStore &store : waiting)
        m_besides.push_back(besideMessage(store, m_account->isLocal()));
    co_return !waiting.empty();
}

Task<> CommandContext::finish()
{
    if (!m_account)
        co_return;
    // A pass that still runs sends what other commands have queued meanwhile, which is then no longer
    // waiting.
    if (m_account->outbox().isFlushing() && m_account->isReachable())
        co_await m_account->outbox().flush();
    // Who stays has said what there was to say.
    if (!m_stays) {
        co_await showRefusals();
        showQueue();
    }
    for (const std::string &message : m_besides)
        writeMessage(message);
    m_patience.end();
    co_await m_account->close();
}

} // namespace orvane
