// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/SyncStatus.h"

#include "AppModel/SecondTick.h"
#include "Time/AppClock.h"

#include <set>

namespace orvane {

namespace {

QString waitingText(int count)
{
    return count == 1 ? SyncStatus::tr("1 change waiting") : SyncStatus::tr("%1 changes waiting").arg(count);
}

QString sendingText(int count)
{
    return count == 1 ? SyncStatus::tr("Sending 1 change…")
                      : SyncStatus::tr("Sending %1 changes…").arg(count);
}

QString toSettleText(int count)
{
    return count == 1 ? SyncStatus::tr("1 entry to settle")
                      : SyncStatus::tr("%1 entries to settle").arg(count);
}

} // namespace

SyncStatus::SyncStatus(SecondTick &tick) : m_tick(&tick)
{
    connect(m_tick, &SecondTick::ticked, this, &SyncStatus::update);
}

void SyncStatus::setAccount(Account *account)
{
    if (m_account)
        m_account->state().disconnect(this);
    m_account = account;
    if (account != nullptr) {
        connect(&account->state(), &AccountState::changed, this, &SyncStatus::update);
        connect(&account->outbox(), &Outbox::pendingChanged, this, &SyncStatus::update);
        connect(&account->outbox(), &Outbox::passEnded, this, &SyncStatus::update);
        connect(account, &Account::trackerChanged, this, [this] { follow(&m_account->tracker()); });
        follow(&account->tracker());
    }
    update();
}

void SyncStatus::follow(Tracker *tracker)
{
    connect(tracker, &Tracker::stateChanged, this, &SyncStatus::update);
    update();
}

void SyncStatus::update()
{
    Shown shown = m_account ? worked() : Shown();
    m_tick->setNeeded(this, m_account && shown.kind == Kind::Offline && m_account->state().nextTry());
    if (shown == m_shown)
        return;
    m_shown = std::move(shown);
    Q_EMIT changed();
}

SyncStatus::Shown SyncStatus::worked() const
{
    const AccountState &state = m_account->state();
    const auto count = static_cast<int>(m_account->outbox().pending().size());
    std::set<std::string> inConflict;
    for (const Outbox::Pending &row : m_account->outbox().conflicts())
        inConflict.insert(row.change.entryId());
    const auto conflicts = static_cast<int>(inConflict.size());
    const QString waiting = waitingText(count);
    if (state.kind() == AccountState::Kind::sessionEnded)
        return {Kind::SessionEnded, tr("Signed out by the server"), count > 0 ? waiting : QString(), count,
                conflicts};
    if (state.kind() == AccountState::Kind::heldBack)
        return {Kind::HeldBack, waiting, tr("Another account is signed in here"), count, conflicts};
    if (conflicts > 0)
        return {Kind::Conflict, toSettleText(conflicts),
                count > conflicts ? waiting : tr("Everything else is sent"), count, conflicts};
    if (!state.isReachable())
        return {Kind::Offline, count > 0 ? waiting : tr("Offline"),
                count > 0 ? tr("Offline. %1").arg(nextTry()).trimmed() : nextTry(), count, conflicts};
    if (m_account->tracker().state() == LoadState::loading)
        return {Kind::Loading, tr("Loading your entries…"), {}, count, conflicts};
    if (count > 0)
        return {Kind::Sending, sendingText(count), {}, count, conflicts};
    return {Kind::Saved, m_account->isLocal() ? tr("All saved") : tr("All changes sent"), {}, 0, 0};
}

QString SyncStatus::nextTry() const
{
    const auto &next = m_account->state().nextTry();
    if (!next)
        return {};
    const auto left = std::chrono::ceil<std::chrono::seconds>(*next - AppClock::now()).count();
    if (left <= 0)
        return tr("Trying again…");
    return left < 60 ? tr("Next try in %1 s").arg(left) : tr("Next try in %1 min").arg((left + 59) / 60);
}

} // namespace orvane
