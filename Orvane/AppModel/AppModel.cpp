// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"

#include <QPointer>
#include <QUrl>
#include <algorithm>

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
        setPhase(Phase::Failed, opened.error().message);
        co_return;
    }
    adopt(std::move(*opened));
    co_await load();
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
    connect(&m_account->access(), &ServerAccess::moved, this, [this] { m_opening = reopen(); });
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

/// The account under its server's new address.
Task<> AppModel::reopen()
{
    const QPointer<AppModel> self(this);
    const std::shared_ptr<Account> before = std::move(m_account);
    m_undo.reset();
    m_sync.setAccount(nullptr);
    Q_EMIT trackerChanged();
    co_await before->close();
    if (self)
        co_await openFrom(true);
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
}

Task<> AppModel::close()
{
    // A window that is closed at once may still be on the way to its account.
    m_isClosing = true;
    if (m_access)
        m_access->giveUp("The application ends.");
    if (m_opening)
        co_await *m_opening;
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
