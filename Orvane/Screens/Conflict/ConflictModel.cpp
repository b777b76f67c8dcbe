// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Conflict/ConflictModel.h"

#include "AppModel/AppModel.h"
#include "Catalog/EntryConversions.h"

#include <QStringList>
#include <algorithm>

namespace orvane {

namespace {

bool isDeletion(const EntryChange &change)
{
    return std::holds_alternative<EntryChange::Delete>(change.action);
}

/// What the user wants of the entry, as far as it is an entry then.
EntryRequest wanted(const EntryChange &mine, const TimeEntryResponse &theirs)
{
    if (const EntryRequest *request = mine.request())
        return *request;
    EntryRequest request = entryRequest(theirs);
    if (const auto *stop = std::get_if<EntryChange::Stop>(&mine.action))
        request.stop = stop->at;
    return request;
}

} // namespace

ConflictModel::ConflictModel(AppModel &app) : m_app(&app), m_fields(nullptr)
{
    connect(m_app, &AppModel::trackerChanged, this, &ConflictModel::follow);
    follow();
}

void ConflictModel::follow()
{
    close();
    if (m_tracker)
        m_tracker->outbox().disconnect(this);
    m_tracker = m_app->tracker();
    if (m_tracker)
        connect(&m_tracker->outbox(), &Outbox::pendingChanged, this, &ConflictModel::look);
}

// Opening and closing

bool ConflictModel::open(const QString &id)
{
    if (!m_tracker)
        return false;
    const auto conflicts = m_tracker->outbox().conflicts();
    const auto found = std::ranges::find_if(
        conflicts, [&](const Outbox::Pending &row) { return row.change.entryId() == id.toStdString(); });
    if (found == conflicts.end())
        return false;
    close();
    load(found->seq);
    return true;
}

void ConflictModel::openFirst()
{
    if (!m_tracker)
        return;
    const auto conflicts = m_tracker->outbox().conflicts();
    const auto found = std::ranges::find_if(conflicts, [&](const Outbox::Pending &row) {
        return row.change.workspaceId() == m_tracker->workspace().id;
    });
    if (found != conflicts.end())
        open(QString::fromStdString(found->change.entryId()));
    else if (!conflicts.empty())
        m_app->notices()->tell(tr("What is to settle belongs to another workspace."));
}

Task<> ConflictModel::load(std::int64_t seq)
{
    const QPointer<ConflictModel> self(this);
    const QPointer<Tracker> tracker = m_tracker;
    m_seq = seq;
    auto sides = co_await m_tracker->outbox().sides(seq);
    if (!self || !tracker || tracker != m_tracker || m_seq != seq)
        co_return;
    if (sides)
        take(std::move(*sides));
    else
        close();
}

void ConflictModel::take(Outbox::ConflictSides sides)
{
    m_theirs = std::move(sides.theirs);
    m_entryId = m_theirs.id;
    m_kind = isDeletion(sides.mine) ? Kind::Delete : sides.isStop ? Kind::Stop : Kind::Fields;
    m_mine = wanted(sides.mine, m_theirs);
    const EntryRequest theirs = entryRequest(m_theirs);
    m_fields.show(differences(m_mine, theirs), m_mine, theirs, words());
    work();
    Q_EMIT entryChanged();
}

/// Another program may have settled it, or the server told a newer state of the entry.
void ConflictModel::look()
{
    if (!isOpen())
        return;
    const auto conflicts = m_tracker->outbox().conflicts();
    const auto row = std::ranges::find(conflicts, m_seq, &Outbox::Pending::seq);
    if (row == conflicts.end())
        close();
    else if (*row->conflict != m_theirs)
        load(m_seq);
}

void ConflictModel::cancel()
{
    close();
}

void ConflictModel::close()
{
    m_seq = 0;
    if (m_entryId.empty())
        return;
    m_entryId.clear();
    m_fields.clear();
    Q_EMIT entryChanged();
    Q_EMIT resultChanged();
}

// What is shown

QString ConflictModel::about() const
{
    if (m_entryId.empty())
        return {};
    const QString quoted = EntryWords::quoted(m_mine.details.description);
    switch (m_kind) {
    case Kind::Fields:
        break;
    case Kind::Stop:
        return tr("%1 was changed elsewhere while your stop waited to be sent. Keep either time.")
            .arg(quoted);
    case Kind::Delete:
        return tr("%1 was changed elsewhere while your deletion waited to be sent.").arg(quoted);
    }
    return tr("%1 was changed elsewhere while your change waited to be sent. Keep either, field by field.")
        .arg(quoted);
}

QString ConflictModel::same() const
{
    if (!isOpen() || m_kind == Kind::Delete)
        return {};
    const auto differing = differences(m_mine, entryRequest(m_theirs));
    const auto isDifferent = [&](ConflictField field) {
        return std::ranges::find(differing, field) != differing.end();
    };
    QStringList said;
    if (!isDifferent(ConflictField::project))
        said << (m_mine.details.projectId ? tr("project %1").arg(words().place(m_mine)) : tr("no project"));
    if (!isDifferent(ConflictField::tags) && !m_mine.details.tagIds.empty())
        said << words().tags(m_mine);
    if (!isDifferent(ConflictField::start))
        said << tr("start %1").arg(words().clock(m_mine.start, false));
    if (!isDifferent(ConflictField::stop) && m_mine.stop)
        said << tr("stop %1").arg(words().stop(m_mine));
    if (!isDifferent(ConflictField::billing))
        said << (m_mine.details.isBillable ? tr("billable") : tr("not billable"));
    QString all = said.join(QStringLiteral(", "));
    if (!all.isEmpty())
        all[0] = all[0].toUpper();
    return all;
}

QString ConflictModel::description() const
{
    return isOpen() ? EntryWords::description(m_result) : QString();
}

QString ConflictModel::project() const
{
    if (!isOpen())
        return {};
    return m_result.details.shares.empty() ? words().project(m_result.details.projectId)
                                           : words().place(m_result);
}

QString ConflictModel::task() const
{
    return isOpen() && m_result.details.shares.empty() ? words().task(m_result.details.taskId) : QString();
}

QString ConflictModel::projectColor() const
{
    return isOpen() ? words().projectColor(m_result.details.projectId) : QString();
}

QString ConflictModel::tags() const
{
    return isOpen() && !m_result.details.tagIds.empty() ? words().tags(m_result) : QString();
}

QString ConflictModel::times() const
{
    return isOpen() ? words().times(m_result) : QString();
}

QString ConflictModel::length() const
{
    return isOpen() ? EntryWords::length(m_result) : QString();
}

// What is chosen

void ConflictModel::choose(int row, bool isTheirs)
{
    m_fields.choose(row, isTheirs);
    work();
}

void ConflictModel::chooseAll(bool areTheirs)
{
    for (int row = 0; row < m_fields.count(); ++row)
        m_fields.choose(row, areTheirs);
    work();
}

/// What would be saved, and what is against it.
void ConflictModel::work()
{
    if (!isOpen())
        return;
    const EntryRequest theirs = entryRequest(m_theirs);
    const auto mine = m_kind == Kind::Delete ? std::set<ConflictField>() : m_fields.mine();
    m_result = withFields(theirs, m_mine, mine);
    const auto refused = mine.empty() ? std::nullopt : m_tracker->checkRules(m_result);
    m_problem = refused ? QString::fromStdString(refused->message) : QString();
    Q_EMIT resultChanged();
}

void ConflictModel::save()
{
    if (!isOpen() || !m_problem.isEmpty())
        return;
    if (m_kind == Kind::Fields)
        settle(KeepMerged{m_result});
    else if (m_kind == Kind::Stop && !m_fields.mine().empty())
        settle(KeepMine{});
    else
        settle(KeepTheirs{});
}

void ConflictModel::deleteAnyway()
{
    if (isOpen() && m_kind == Kind::Delete)
        settle(KeepMine{});
}

void ConflictModel::settle(Settlement settlement)
{
    const std::string id = m_theirs.id;
    const QString quoted = EntryWords::quoted(m_result.details.description);
    const std::int64_t seq = m_seq;
    close();
    tellEnd(m_tracker->settle(seq, std::move(settlement), m_theirs), id, quoted);
}

Task<> ConflictModel::tellEnd(Task<Result<std::optional<EntryStep>, StoreError>> settling,
                              std::string entryId, QString quoted)
{
    const QPointer<ConflictModel> self(this);
    const auto settled = co_await settling;
    if (!self || !m_tracker)
        co_return;
    if (!settled) {
        m_app->notices()->tellFailure(QString::fromStdString(describe(settled.error())));
        co_return;
    }
    const auto conflicts = m_tracker->outbox().conflicts();
    const bool asksAgain = std::ranges::any_of(
        conflicts, [&](const Outbox::Pending &row) { return row.change.entryId() == entryId; });
    if (asksAgain)
        m_app->notices()->tellFailure(tr("%1 was changed again meanwhile; your choice waits.").arg(quoted));
}

} // namespace orvane
