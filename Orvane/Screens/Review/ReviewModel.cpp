// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Review/ReviewModel.h"

#include "AppModel/AppModel.h"
#include "Proposals/ProposalText.h"
#include "Proposals/ProposedEntry.h"
#include "Proposals/SettledProposal.h"
#include "Screens/Conflict/EntryWords.h"
#include "Screens/Conflict/RetypedEntry.h"
#include "Screens/Timer/TimerModel.h"

#include <algorithm>

namespace orvane {

namespace {

constexpr std::size_t settledShown = 30;

bool isNew(const AgentProposalResponse &proposal)
{
    return proposal.plan.work.has_value();
}

bool isPending(const AgentProposalResponse &proposal)
{
    return proposal.status == "pending";
}

std::optional<std::string> projectOf(const ProposalPlanResponse &plan)
{
    return plan.work ? plan.work->projectId : plan.before ? plan.before->projectId : std::nullopt;
}

} // namespace

ReviewModel::ReviewModel(AppModel &app, TimerModel &timer)
    : m_app(&app), m_timer(&timer), m_offers(nullptr), m_settled(nullptr)
{
    connect(m_app, &AppModel::trackerChanged, this, &ReviewModel::follow);
    connect(m_timer->field(), &EntryField::textChanged, this, &ReviewModel::handleFieldText);
    connect(m_timer->field(), &EntryField::recorded, this, [this](bool isDone) {
        if (isDone && m_edited && m_edited->entryId.isEmpty())
            noteHandled(m_edited->proposalId, {});
    });
    connect(m_timer->editor(), &EntryEditor::written, this, [this](const QString &entryId) {
        if (m_edited && m_edited->entryId == entryId)
            noteHandled(m_edited->proposalId, {entryId.toStdString()});
    });
    follow();
}

void ReviewModel::follow()
{
    for (QObject *before : {static_cast<QObject *>(m_tracker), static_cast<QObject *>(m_proposals)}) {
        if (before != nullptr)
            before->disconnect(this);
    }
    if (m_tracker)
        m_tracker->catalog().disconnect(this);
    m_tracker = m_app->tracker();
    m_proposals = m_tracker ? &m_app->account()->proposals() : nullptr;
    m_edited.reset();
    m_isLoading = m_isLoaded = m_isSettling = false;
    m_problem.clear();
    if (m_tracker) {
        connect(m_proposals, &AgentProposals::changed, this, &ReviewModel::show);
        connect(m_tracker, &Tracker::timeChanged, this, &ReviewModel::show);
        connect(m_tracker, &Tracker::dayTurned, this, &ReviewModel::show);
        connect(m_tracker, &Tracker::stateChanged, this, &ReviewModel::loadWhenReady);
        connect(&m_tracker->catalog(), &Catalog::changed, this, &ReviewModel::show);
        loadWhenReady();
    }
    show();
}

// Loading

/// After the entries, which are what a window is opened for.
void ReviewModel::loadWhenReady()
{
    if (m_tracker->state() == LoadState::loaded && !m_isLoaded && !m_isLoading)
        load();
}

void ReviewModel::loadAgain()
{
    if (m_proposals && !m_isLoading)
        load();
}

Task<> ReviewModel::load()
{
    const QPointer<ReviewModel> self(this);
    const QPointer<AgentProposals> proposals = m_proposals;
    m_isLoading = true;
    m_problem.clear();
    Q_EMIT changed();
    const auto loaded = co_await proposals->load();
    if (!self || !proposals || proposals != m_proposals)
        co_return;
    m_isLoading = false;
    m_isLoaded = m_isLoaded || loaded.has_value();
    if (!loaded)
        m_problem = QString::fromStdString(describe(loaded.error()));
    show();
}

// What is shown

Offer ReviewModel::offerOf(const AgentProposalResponse &proposal) const
{
    const EntryWords words(m_tracker->catalog(), m_tracker->time());
    return {.id = proposal.id,
            .text = ProposalText::of(proposal, m_tracker->catalog(), m_tracker->time()),
            .color = words.projectColor(projectOf(proposal.plan)),
            .isRemoval = proposal.plan.action == "remove"};
}

QString ReviewModel::moment(Instant at) const
{
    const UserTime &time = m_tracker->time();
    const DayKey day = time.dayKey(at);
    return QString::fromStdString(day == time.today() ? time.clockLabel(at) : time.dayLabel(day));
}

SettledOffer ReviewModel::settledOf(const AgentProposalResponse &proposal) const
{
    const bool isTaken = proposal.status == "applied" || proposal.status == "handled";
    const QString what = proposal.status == "applied"     ? tr("Accepted")
                         : proposal.status == "handled"   ? tr("Edited and recorded")
                         : proposal.status == "withdrawn" ? tr("Withdrawn by the agent")
                                                          : tr("Declined");
    const QString about = tr("%1, %2").arg(QString::fromStdString(proposal.agentName),
                                           QString::fromStdString(proposedEntry(proposal)));
    return {.id = proposal.id,
            .what = what,
            .about = about,
            .at = moment(proposal.resolvedAt.value_or(proposal.createdAt)),
            .isTaken = isTaken,
            .mayReopen = proposal.status != "withdrawn"};
}

void ReviewModel::show()
{
    std::vector<Offer> offers;
    std::vector<AgentProposalResponse> settled;
    if (m_proposals) {
        for (const AgentProposalResponse &proposal : m_proposals->pending())
            offers.push_back(offerOf(proposal));
        std::ranges::copy_if(m_proposals->proposals(), std::back_inserter(settled), std::not_fn(isPending));
    }
    std::ranges::sort(settled, std::greater(), [](const auto &proposal) {
        return std::pair(proposal.resolvedAt, proposal.createdAt);
    });
    m_settledToday = static_cast<int>(std::ranges::count_if(settled, [this](const auto &proposal) {
        return proposal.resolvedAt &&
               m_tracker->time().dayKey(*proposal.resolvedAt) == m_tracker->time().today();
    }));
    settled.resize(std::min(settled.size(), settledShown));
    std::vector<SettledOffer> rows;
    std::ranges::transform(settled, std::back_inserter(rows),
                           [this](const auto &proposal) { return settledOf(proposal); });
    m_offers.show(std::move(offers));
    m_settled.update(std::move(rows));
    Q_EMIT changed();
}

// Answers

void ReviewModel::setSettling(bool isSettling)
{
    m_isSettling = isSettling;
    Q_EMIT changed();
}

void ReviewModel::accept(const QString &id)
{
    if (m_proposals && !m_isSettling)
        doAccept(id.toStdString());
}

void ReviewModel::decline(const QString &id)
{
    if (m_proposals && !m_isSettling)
        doDecline(id.toStdString());
}

void ReviewModel::reopen(const QString &id)
{
    if (m_proposals && !m_isSettling)
        doReopen(id.toStdString());
}

void ReviewModel::finish(const AgentProposalResponse &proposal)
{
    m_app->noteChange(undoableSettling(*m_proposals, proposal), true);
}

void ReviewModel::tellFailure(const CallError &error)
{
    m_app->notices()->tellFailure(QString::fromStdString(proposalFailure(error)));
}

Task<> ReviewModel::doAccept(std::string id)
{
    const QPointer<ReviewModel> self(this);
    const QPointer<AgentProposals> proposals = m_proposals;
    setSettling(true);
    const auto applied = co_await proposals->apply(std::move(id));
    if (!self || !proposals || proposals != m_proposals)
        co_return;
    setSettling(false);
    if (applied)
        finish(applied->proposal);
    else
        tellFailure(applied.error());
}

Task<> ReviewModel::doDecline(std::string id)
{
    const QPointer<ReviewModel> self(this);
    const QPointer<AgentProposals> proposals = m_proposals;
    setSettling(true);
    const auto declined = co_await proposals->dismiss(std::move(id));
    if (!self || !proposals || proposals != m_proposals)
        co_return;
    setSettling(false);
    if (declined)
        finish(*declined);
    else
        tellFailure(declined.error());
}

Task<> ReviewModel::doReopen(std::string id)
{
    const QPointer<ReviewModel> self(this);
    const QPointer<AgentProposals> proposals = m_proposals;
    setSettling(true);
    const auto reopened = co_await proposals->reopen(std::move(id));
    if (!self || !proposals || proposals != m_proposals)
        co_return;
    setSettling(false);
    if (!reopened)
        tellFailure(reopened.error());
}

// Editing before it is recorded

bool ReviewModel::edit(const QString &id)
{
    const AgentProposalResponse *proposal = m_proposals ? m_proposals->find(id.toStdString()) : nullptr;
    if (proposal == nullptr || !isPending(*proposal))
        return false;
    return isNew(*proposal) ? editNew(*proposal) : editChange(*proposal);
}

bool ReviewModel::editNew(const AgentProposalResponse &proposal)
{
    EntryField *field = m_timer->field();
    if (!field->text().trimmed().isEmpty()) {
        m_app->notices()->tellFailure(tr("Finish or clear what is in the timer's field first."));
        return false;
    }
    const EntryRequest request = proposedEntryRequest(*proposal.plan.work);
    if (!request.details.shares.empty()) {
        m_app->notices()->tellFailure(
            tr("Accept it first and edit the entry then: the field cannot hold a split."));
        return false;
    }
    field->setText(retypedEntry(request, m_tracker->catalog(), m_tracker->time()));
    m_edited = Edited{proposal.id, {}};
    return true;
}

bool ReviewModel::editChange(const AgentProposalResponse &proposal)
{
    const auto entry = m_tracker->entry(proposal.entryId.value_or(std::string()));
    const QString id = entry ? QString::fromStdString(entry->id) : QString();
    const bool isOpen = entry && proposal.plan.changes && !proposal.plan.changes->remove &&
                        m_timer->editor()->openWith(id, proposedChange(*proposal.plan.changes, *entry));
    if (isOpen)
        m_edited = Edited{proposal.id, id};
    else
        m_app->notices()->tellFailure(
            tr("The entry is locked, gone or further back than what is loaded; it cannot be edited here."));
    return isOpen;
}

/// What is typed after the field was cleared is something else; what could not be recorded comes back.
void ReviewModel::handleFieldText()
{
    const QString text = m_timer->field()->text();
    if (text.isEmpty())
        m_clearedText = m_fieldText;
    else if (m_fieldText.isEmpty() && text != m_clearedText && m_edited && m_edited->entryId.isEmpty())
        m_edited.reset();
    m_fieldText = text;
}

Task<> ReviewModel::noteHandled(std::string id, std::vector<std::string> entryIds)
{
    const QPointer<ReviewModel> self(this);
    const QPointer<AgentProposals> proposals = m_proposals;
    m_edited.reset();
    const auto handled = co_await proposals->noteHandled(std::move(id), std::move(entryIds));
    if (self && proposals == m_proposals && !handled)
        tellFailure(handled.error());
}

} // namespace orvane
