// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Conflict/RefusedList.h"

#include "AppModel/AppModel.h"
#include "Catalog/EntryConversions.h"
#include "Screens/Conflict/ConflictFields.h"
#include "Screens/Conflict/RetypedEntry.h"
#include "Screens/Timer/EntryEditor.h"
#include "Screens/Timer/EntryField.h"

#include <QStringList>
#include <algorithm>

namespace orvane {

namespace {

constexpr int statusGone = 404;

bool isCreation(const EntryChange &change)
{
    return std::holds_alternative<EntryChange::Create>(change.action);
}

} // namespace

RefusedList::RefusedList(AppModel &app, EntryEditor &editor, EntryField &field)
    : m_app(&app), m_editor(&editor), m_field(&field)
{
    connect(m_app, &AppModel::trackerChanged, this, &RefusedList::follow);
    connect(m_editor, &EntryEditor::written, this, &RefusedList::handleWritten);
    follow();
}

void RefusedList::follow()
{
    for (QObject *before : {static_cast<QObject *>(m_tracker), static_cast<QObject *>(m_outbox),
                            static_cast<QObject *>(m_outcomes)}) {
        if (before != nullptr)
            before->disconnect(this);
    }
    if (m_tracker)
        m_tracker->catalog().disconnect(this);
    m_tracker = m_app->tracker();
    m_outbox = m_tracker ? &m_app->account()->outbox() : nullptr;
    m_outcomes = m_tracker ? &m_app->account()->outcomes() : nullptr;
    m_edited.reset();
    show({});
    if (!m_tracker)
        return;
    connect(m_outcomes, &OutboxOutcomes::rejected, this, &RefusedList::read);
    // What another process of this computer was refused.
    connect(m_outbox, &Outbox::passEnded, this, &RefusedList::read);
    connect(m_tracker, &Tracker::entriesChanged, this, &RefusedList::tellChanged);
    connect(m_tracker, &Tracker::timeChanged, this, &RefusedList::tellChanged);
    connect(&m_tracker->catalog(), &Catalog::changed, this, &RefusedList::tellChanged);
    read();
}

// What there is

void RefusedList::read()
{
    m_readsAgain = m_isReading;
    if (!m_isReading && m_outbox)
        readStored();
}

Task<> RefusedList::readStored()
{
    const QPointer<RefusedList> self(this);
    const QPointer<Outbox> outbox = m_outbox;
    m_isReading = true;
    auto refusals = co_await outbox->setRefusalsAside();
    if (!self)
        co_return;
    m_isReading = false;
    if (refusals && m_tracker && outbox == m_outbox) {
        std::erase_if(*refusals, [this](const Refusal &refusal) {
            return refusal.change.workspaceId() != m_tracker->workspace().id;
        });
        show(std::move(*refusals));
    }
    if (std::exchange(m_readsAgain, false))
        read();
}

void RefusedList::show(std::vector<Refusal> refusals)
{
    if (refusals == m_refusals)
        return;
    beginResetModel();
    m_refusals = std::move(refusals);
    endResetModel();
    Q_EMIT countChanged();
}

void RefusedList::tellChanged()
{
    if (count() > 0)
        Q_EMIT dataChanged(index(0), index(count() - 1));
}

const Refusal *RefusedList::at(int row) const
{
    return row >= 0 && row < count() && m_tracker ? &m_refusals[static_cast<std::size_t>(row)] : nullptr;
}

std::optional<EntryRequest> RefusedList::held(const Refusal &refusal) const
{
    const auto entry = m_tracker->entry(refusal.change.entryId());
    return entry ? std::optional(entryRequest(*entry)) : std::nullopt;
}

/// The entry as the change would have made it, as far as it is known.
EntryRequest RefusedList::wanted(const Refusal &refusal) const
{
    if (const EntryRequest *request = refusal.change.request())
        return *request;
    EntryRequest request = held(refusal).value_or(EntryRequest{});
    if (const auto *stop = std::get_if<EntryChange::Stop>(&refusal.change.action)) {
        request.stop = stop->at;
        request.start = std::min(request.start, stop->at);
    }
    return request;
}

// What is shown

QString RefusedList::heldWords(const EntryRequest &wanted, const EntryRequest &held) const
{
    const auto fields = differences(wanted, held);
    const auto differs = [&](ConflictField field) {
        return std::ranges::find(fields, field) != fields.end();
    };
    QStringList said;
    if (differs(ConflictField::description))
        said << (held.details.description.empty() ? tr("no description")
                                                  : EntryWords::quoted(held.details.description));
    if (differs(ConflictField::project))
        said << words().place(held);
    if (differs(ConflictField::tags))
        said << words().tags(held);
    if (differs(ConflictField::billing))
        said << (held.details.isBillable ? tr("billable") : tr("not billable"));
    if (differs(ConflictField::start) || differs(ConflictField::stop))
        said << words().times(held);
    return said.join(QStringLiteral(", "));
}

QString RefusedList::sentence(const Refusal &refusal) const
{
    if (isCreation(refusal.change))
        return tr("This entry isn't saved.");
    if (refusal.status == statusGone)
        return tr("Your change isn't saved; the server has no such entry.");
    if (std::holds_alternative<EntryChange::Delete>(refusal.change.action))
        return tr("It isn't deleted; the server still has it.");
    const auto held = this->held(refusal);
    const QString has = held ? heldWords(wanted(refusal), *held) : QString();
    return has.isEmpty() ? tr("Your change isn't saved.")
                         : tr("Your change isn't saved; the server has %1.").arg(has);
}

QVariant RefusedList::data(const QModelIndex &index, int role) const
{
    const Refusal *refusal = index.isValid() ? at(index.row()) : nullptr;
    if (refusal == nullptr)
        return {};
    const EntryRequest wanted = this->wanted(*refusal);
    const auto held = this->held(*refusal);
    switch (role) {
    case titleRole:
        return EntryWords::description(wanted);
    case reasonRole:
        return QString::fromStdString(refusal->message);
    case sentenceRole:
        return sentence(*refusal);
    case projectRole:
        return wanted.details.shares.empty() ? words().project(wanted.details.projectId)
                                             : words().place(wanted);
    case taskRole:
        return wanted.details.shares.empty() ? words().task(wanted.details.taskId) : QString();
    case colorRole:
        return words().projectColor(wanted.details.projectId);
    case startRole:
        return words().clock(wanted.start,
                             wanted.start < m_tracker->time().startOfDay(m_tracker->time().today()));
    case stopRole:
        return wanted.stop ? words().stop(wanted) : tr("now");
    case lengthRole:
        return EntryWords::length(wanted);
    case isTitleNewRole:
        return !held || held->details.description != wanted.details.description;
    case isStartNewRole:
        return held && held->start != wanted.start;
    case isStopNewRole:
        return held && held->stop != wanted.stop;
    default:
        return {};
    }
}

int RefusedList::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QHash<int, QByteArray> RefusedList::roleNames() const
{
    return {{titleRole, "title"},
            {reasonRole, "reason"},
            {sentenceRole, "sentence"},
            {projectRole, "project"},
            {taskRole, "task"},
            {colorRole, "projectColor"},
            {startRole, "start"},
            {stopRole, "stop"},
            {lengthRole, "length"},
            {isTitleNewRole, "isTitleNew"},
            {isStartNewRole, "isStartNew"},
            {isStopNewRole, "isStopNew"}};
}

// What is answered

void RefusedList::edit(int row)
{
    const Refusal *refusal = at(row);
    if (refusal == nullptr)
        return;
    if (isCreation(refusal->change)) {
        editCreation(*refusal);
        return;
    }
    const QString id = QString::fromStdString(refusal->change.entryId());
    m_edited.reset();
    if (m_editor->openWith(id, wanted(*refusal)))
        m_edited = Edited{refusal->seq, id};
    else
        m_app->notices()->tellFailure(tr("The entry is locked, or gone; it cannot be edited."));
}

void RefusedList::editCreation(const Refusal &refusal)
{
    if (!m_field->text().trimmed().isEmpty()) {
        m_app->notices()->tellFailure(tr("Finish or clear what is in the field first."));
        return;
    }
    m_field->setText(retypedEntry(*refusal.change.request(), m_tracker->catalog(), m_tracker->time()));
    answer(refusal.seq);
    Q_EMIT fieldFilled();
}

void RefusedList::handleWritten(const QString &entryId)
{
    if (!m_edited || m_edited->entryId != entryId)
        return;
    answer(m_edited->seq);
    m_edited.reset();
}

void RefusedList::tryAgain(int row)
{
    if (const Refusal *refusal = at(row))
        sendAgain(*refusal);
}

Task<SaveResult> RefusedList::again(const Refusal &refusal) const
{
    const std::string &id = refusal.change.entryId();
    if (isCreation(refusal.change))
        return m_tracker->create(*refusal.change.request());
    if (std::holds_alternative<EntryChange::Delete>(refusal.change.action))
        return m_tracker->remove(id);
    return m_tracker->update(id, wanted(refusal));
}

Task<> RefusedList::sendAgain(Refusal refusal)
{
    const QPointer<RefusedList> self(this);
    const SaveResult result = co_await again(refusal);
    if (!self)
        co_return;
    const bool isTaken = result.outcome == SaveOutcome::saved || result.outcome == SaveOutcome::waiting ||
                         result.outcome == SaveOutcome::stopped;
    if (!isTaken)
        m_app->notices()->tellFailure(QString::fromStdString(result.message));
    // Refused by the server once more it stands here anew; a creation is still the one that is here.
    const bool isHereAnew = result.error && !isCreation(refusal.change);
    if (isTaken || isHereAnew)
        co_await answer(refusal.seq);
}

void RefusedList::discard(int row)
{
    if (const Refusal *refusal = at(row))
        answer(refusal->seq);
}

Task<> RefusedList::answer(std::int64_t seq)
{
    const QPointer<RefusedList> self(this);
    if (!m_outbox)
        co_return;
    const auto noted = co_await m_outbox->markAnswered(seq);
    if (!self)
        co_return;
    if (!noted)
        m_app->notices()->tellFailure(QString::fromStdString(describe(noted.error())));
    read();
}

} // namespace orvane
