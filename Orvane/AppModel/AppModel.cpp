// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"

#include "Account/AccountStores.h"
#include "Account/KnownServer.h"

#include <QPointer>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace orvane {

namespace {

/// Whether an action is worth a line that offers to take it back: what the timer does is seen anyway, and so
/// is what was typed into one entry.
bool isWorthTelling(const StoredStep &stored)
{
    const auto &turns = stored.step.turns;
    const bool isTimer = std::ranges::any_of(
        turns, [](const EntryTurn &turn) { return !turn.before && turn.after && !turn.after->stop; });
    const bool isDeletion =
        std::ranges::any_of(turns, [](const EntryTurn &turn) { return !turn.after.has_value(); });
    return !stored.isTakeBack && !isTimer && (isDeletion || turns.size() > 1);
}

/// Reading lists of thousands leaves a heap that is larger than what is kept of them.
void giveBackMemory()
{
#ifdef __GLIBC__
    malloc_trim(0);
#endif
}

QString sessionEndedText()
{
    return AppModel::tr("Your session has ended. Please sign in again.");
}

} // namespace

AppModel::AppModel(Options options)
    : m_options(std::move(options))
    , m_installation(m_options.folder)
    , m_tick(nullptr)
    , m_notices(nullptr)
    , m_sync(m_tick)
    , m_choices(WindowChoices::pathIn(m_installation.root()))
    , m_keys(m_choices)
{
    connect(&m_choices, &WindowChoices::stepMade, this,
            [this](const std::shared_ptr<UndoableChange> &step) { noteChange(step, false); });
}

AppModel::~AppModel() = default;

void AppModel::undo()
{
    if (m_undo && m_undo->canUndo())
        tell(m_undo->undo());
}

void AppModel::redo()
{
    if (m_undo && m_undo->canRedo())
        tell(m_undo->redo());
}

void AppModel::noteChange(const std::shared_ptr<UndoableChange> &change, bool isWorthTelling)
{
    if (!m_undo)
        return;
    m_undo->add(change);
    if (isWorthTelling)
        m_notices.tell(QString::fromStdString(change->sentence()), Notices::Action::Undo);
}

Task<> AppModel::tell(Task<UndoStack::Answer> answer)
{
    const QPointer<AppModel> self(this);
    const UndoStack::Answer said = co_await answer;
    if (!self)
        co_return;
    const QString sentence = QString::fromStdString(said.sentence);
    if (said.isDone)
        m_notices.tell(sentence);
    else
        m_notices.tellFailure(sentence);
}

// Drafts

std::string AppModel::draftOwner() const
{
    return m_account->server() + " " + m_account->me().id;
}

QString AppModel::draft(const std::string &place) const
{
    return m_drafts && m_account ? m_drafts->text(draftOwner(), place) : QString();
}

void AppModel::setDraft(const std::string &place, const QString &text)
{
    if (m_drafts && m_account)
        m_drafts->setText(draftOwner(), place, text);
}

// The account

void AppModel::open()
{
    m_opening = openFrom(false);
}

Task<> AppModel::openFrom(bool waitsForServer)
{
    const QPointer<AppModel> self(this);
    setPhase(Phase::Opening);
    const auto access =
        std::make_shared<ServerAccess>(ServerAccess::Options{.installation = &m_installation,
                                                             .server = m_options.server,
                                                             .startsServer = m_options.startsServer,
                                                             .serverProgram = m_options.serverProgram,
                                                             .waitsForServer = waitsForServer});
    m_access = access;
    if (auto found = co_await access->find(); !found) {
        if (self)
            setPhase(Phase::Failed, found.error().message);
        co_return;
    }
    auto opened = co_await Account::open(access, m_options.account);
    if (!self || (m_isClosing && !opened))
        co_return;
    if (!opened) {
        failToOpen(opened.error());
        co_return;
    }
    adopt(std::move(*opened));
    co_await load();
}

/// Where somebody has to sign in first, that is what is asked for.
void AppModel::failToOpen(const AccountError &error)
{
    using Kind = AccountError::Kind;
    if (error.kind != Kind::signedOut && error.kind != Kind::neverSignedIn) {
        setPhase(Phase::Failed, error.message);
        return;
    }
    const bool isOver = error.kind == Kind::signedOut;
    if (isOver)
        m_installation.noteSignOut(m_access->address());
    setPhase(Phase::SignedOut);
    Q_EMIT signInWanted(QString::fromStdString(m_access->address()), isOver ? sessionEndedText() : QString());
}

void AppModel::openAgain()
{
    if (m_phase == Phase::Failed)
        open();
}

void AppModel::adopt(std::unique_ptr<Account> account)
{
    m_account = std::move(account);
    connect(m_account.get(), &Account::trackerChanged, this, &AppModel::follow);
    connect(m_account.get(), &Account::meChanged, this, &AppModel::placeChanged);
    connect(&m_account->access(), &ServerAccess::moved, this, [this] { m_opening = reopen(true); });
    // Told from within the account, which is left.
    connect(
        &m_account->state(), &AccountState::changed, this,
        [this] {
            if (m_account && m_account->state().kind() == AccountState::Kind::sessionEnded)
                m_opening = leaveEnded();
        },
        Qt::QueuedConnection);
    std::string problem;
    if (!m_drafts && m_installation.makeFolder(problem))
        m_drafts = std::make_unique<DraftFile>(DraftFile::pathIn(m_installation.root()));
    m_sync.setAccount(m_account.get());
    follow();
}

void AppModel::follow()
{
    m_undo = std::make_unique<UndoStack>(m_account->tracker(), m_account->outcomes(), m_account->history());
    connect(&m_account->tracker(), &Tracker::stepStored, this, [this](const StoredStep &stored) {
        if (isWorthTelling(stored))
            m_notices.tell(QString::fromStdString(stored.sentence), Notices::Action::Undo);
    });
    Q_EMIT placeChanged();
    Q_EMIT trackerChanged();
}

// Going from one account to another

void AppModel::switchTo(const QString &server, const QString &workspaceId)
{
    if (m_phase == Phase::Opening || m_isSigningOut)
        return;
    const std::string address = server.toStdString();
    const std::string workspace = workspaceId.toStdString();
    if (m_account && m_account->server() == address) {
        if (workspace != m_account->tracker().workspace().id)
            m_account->useWorkspace(workspace);
        return;
    }
    if (const auto account = m_installation.account(address); account && !workspace.empty())
        m_installation.setWorkspace(address, *account, workspace);
    useServer(address);
    m_opening = reopen(false);
}

/// From the next opening on.
void AppModel::useServer(const std::string &address)
{
    const bool isLocal = address.empty() || address == m_installation.localServer();
    m_options.server.reset();
    m_installation.setCurrentServer(isLocal ? std::nullopt : std::optional(address));
}

Task<> AppModel::reopen(bool waitsForServer)
{
    const QPointer<AppModel> self(this);
    co_await leave();
    if (self && !m_isClosing)
        co_await openFrom(waitsForServer);
}

Task<> AppModel::leave()
{
    if (!m_account)
        co_return;
    m_live.reset();
    const std::shared_ptr<Account> before = std::move(m_account);
    before->access().disconnect(this);
    before->state().disconnect(this);
    m_undo.reset();
    m_sync.setAccount(nullptr);
    Q_EMIT placeChanged();
    Q_EMIT trackerChanged();
    co_await before->close();
}

void AppModel::enter(std::unique_ptr<Account> account)
{
    m_opening = enterNext(std::move(account));
}

Task<> AppModel::enterNext(std::unique_ptr<Account> next)
{
    const QPointer<AppModel> self(this);
    setPhase(Phase::Opening);
    m_access.reset();
    m_options.server.reset();
    co_await leave();
    if (!self)
        co_return;
    const std::string notice = next->access().tokenNotice();
    adopt(std::move(next));
    if (!notice.empty())
        m_notices.tellFailure(QString::fromStdString(notice));
    co_await load();
}

/// The server has ended the session; the queue stays where it is.
Task<> AppModel::leaveEnded()
{
    const QPointer<AppModel> self(this);
    const std::string server = m_account->server();
    m_installation.noteSignOut(server);
    co_await leave();
    if (!self || m_isClosing)
        co_return;
    setPhase(Phase::SignedOut);
    Q_EMIT signInWanted(QString::fromStdString(server), sessionEndedText());
}

void AppModel::askForSignIn(const QString &server)
{
    Q_EMIT signInWanted(server, {});
}

void AppModel::signOut(bool sendsFirst)
{
    if (m_account && !m_account->isAutomatic() && !m_isSigningOut)
        m_opening = signOutWhen(sendsFirst);
}

Task<> AppModel::signOutWhen(bool sendsFirst)
{
    const QPointer<AppModel> self(this);
    const QPointer<Account> account(m_account.get());
    setSigningOut(true);
    if (sendsFirst)
        co_await account->outbox().flush();
    if (!self || !account || m_isClosing)
        co_return;
    if (sendsFirst && !account->outbox().pending().empty()) {
        setSigningOut(false);
        m_notices.tellFailure(tr("Not everything could be sent. You are still signed in."));
        co_return;
    }
    const auto done = co_await account->signOut();
    if (!self)
        co_return;
    setSigningOut(false);
    if (!done) {
        m_notices.tellFailure(QString::fromStdString(done.error().message));
        co_return;
    }
    co_await leave();
    if (self && !m_isClosing)
        co_await openNext();
}

void AppModel::forgetAccount()
{
    if (m_account)
        m_opening = leaveForGood();
}

Task<> AppModel::leaveForGood()
{
    const QPointer<AppModel> self(this);
    const std::string server = m_account->server();
    const std::string account = m_account->me().id;
    const bool wasAutomatic = m_account->isAutomatic();
    if (m_drafts) {
        if (const auto forgotten = m_drafts->forget(draftOwner()); !forgotten)
            m_notices.tellFailure(QString::fromStdString(forgotten.error()));
    }
    // The server knows the session no more, which leaves the tokens here.
    if (!wasAutomatic)
        (void)co_await QPointer<Account>(m_account.get())->signOut();
    if (!self)
        co_return;
    co_await leave();
    if (!self)
        co_return;
    m_installation.forgetAccount(server);
    if (const auto gone = removeStore(m_installation.root(), server, account); !gone)
        m_notices.tellFailure(QString::fromStdString(describe(gone.error())));
    if (m_isClosing)
        co_return;
    if (wasAutomatic)
        co_await openFrom(false);
    else
        co_await openNext();
}

/// The next server that somebody is signed in to takes over.
Task<> AppModel::openNext()
{
    for (const KnownServer &server : KnownServer::all(m_installation)) {
        if (server.isSignedOut)
            continue;
        useServer(server.address);
        return openFrom(false);
    }
    return askWhere();
}

Task<> AppModel::askWhere()
{
    setPhase(Phase::SignedOut);
    Q_EMIT signInWanted({}, {});
    co_return;
}

void AppModel::setSigningOut(bool isSigningOut)
{
    m_isSigningOut = isSigningOut;
    Q_EMIT signingOutChanged();
}

/// What is known here is shown before the server is asked.
Task<> AppModel::load()
{
    const QPointer<AppModel> self(this);
    co_await m_account->tracker().loadSnapshot();
    if (!self || m_isClosing)
        co_return;
    setPhase(Phase::Open);
    m_account->tracker().load();
    m_account->outbox().flush();
    m_live = std::make_unique<LiveRefresh>(*m_account);
    m_live->start();
    QTimer::singleShot(std::chrono::seconds(1), this, &giveBackMemory);
}

Task<> AppModel::close()
{
    // A window that is closed at once may still be on the way to its account.
    m_isClosing = true;
    if (m_access)
        m_access->giveUp("The application ends.");
    if (m_opening)
        co_await *m_opening;
    m_live.reset();
    m_sync.setAccount(nullptr);
    m_undo.reset();
    if (m_drafts)
        (void)m_drafts->flush();
    if (m_account)
        co_await m_account->close();
}

QString AppModel::workspaceName() const
{
    return m_account ? m_account->tracker().workspaceName() : QString();
}

QString AppModel::placeName() const
{
    if (!m_account)
        return {};
    if (m_account->isLocal())
        return tr("This Computer");
    return QUrl(QString::fromStdString(m_account->server())).host();
}

void AppModel::setPhase(Phase phase, const std::string &problem)
{
    m_phase = phase;
    m_problem = QString::fromStdString(problem);
    Q_EMIT phaseChanged();
}

} // namespace orvane
