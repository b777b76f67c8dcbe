// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/AccountState.h"

#include <QPointer>
#include <utility>

namespace orvane {

AccountState::Kind AccountState::kind() const
{
    switch (m_session) {
    case Session::opening:
        return Kind::opening;
    case Session::signedOut:
        return Kind::signedOut;
    case Session::ended:
        return Kind::sessionEnded;
    case Session::open:
        break;
    }
    if (!m_isReachable)
        return Kind::offline;
    return m_isHeldBack ? Kind::heldBack : Kind::online;
}

void AccountState::noteAnswer()
{
    if (m_isGivenUp || std::exchange(m_isReachable, true))
        return;
    m_isTurnedAway = false;
    m_reason.clear();
    const QPointer<AccountState> self(this);
    Q_EMIT changed();
    if (self)
        Q_EMIT cameBack();
}

void AccountState::noteSilence(const std::string &reason)
{
    noteAway(reason, false);
}

void AccountState::noteTurnedAway(const std::string &reason)
{
    noteAway(reason, true);
}

void AccountState::noteAway(const std::string &reason, bool isTurnedAway)
{
    if (m_isGivenUp)
        return;
    const bool wasReachable = std::exchange(m_isReachable, false);
    if (!wasReachable && (reason.empty() || reason == m_reason))
        return;
    m_isTurnedAway = isTurnedAway;
    m_reason = reason;
    Q_EMIT changed();
}

void AccountState::giveUp(const std::string &reason)
{
    noteSilence(reason);
    m_isGivenUp = true;
}

void AccountState::noteOpened()
{
    setSession(Session::open);
}

void AccountState::noteSignedOut()
{
    setSession(Session::signedOut);
}

void AccountState::noteSessionEnd()
{
    setSession(Session::ended);
}

void AccountState::setSession(Session session)
{
    if (std::exchange(m_session, session) != session)
        Q_EMIT changed();
}

void AccountState::setHeldBack(bool isHeldBack)
{
    if (std::exchange(m_isHeldBack, isHeldBack) != isHeldBack)
        Q_EMIT changed();
}

void AccountState::setNextTry(std::optional<Instant> nextTry)
{
    if (std::exchange(m_nextTry, nextTry) != nextTry)
        Q_EMIT changed();
}

} // namespace orvane
