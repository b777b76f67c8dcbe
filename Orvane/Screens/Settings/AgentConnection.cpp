// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/AgentConnection.h"

namespace orvane {

AgentConnection::AgentConnection(AgentConnector &connector, CodingAgent agent)
    : m_connector(&connector), m_agent(agent)
{
    connect(m_connector, &AgentConnector::changed, this, [this](CodingAgent which) {
        if (which == m_agent)
            Q_EMIT changed();
    });
}

void AgentConnection::setEndpoint(const std::string &endpoint)
{
    if (m_endpoint == endpoint)
        return;
    m_endpoint = endpoint;
    Q_EMIT changed();
}

QString AgentConnection::name() const
{
    return QString::fromStdString(displayNameOf(m_agent));
}

AgentSituation AgentConnection::situation() const
{
    return m_tried == m_endpoint ? m_connector->situation(m_agent) : AgentSituation::none;
}

bool AgentConnection::isAdded() const
{
    return !m_endpoint.empty() && m_connector->endpoint(m_agent) == m_endpoint;
}

QString AgentConnection::waiting() const
{
    return m_isRemoving ? tr("Waiting for %1.").arg(name())
                        : tr("Waiting for %1. Your browser opens to sign in.").arg(name());
}

QString AgentConnection::message() const
{
    if (situation() != AgentSituation::none)
        return QString::fromStdString(describe(situation(), m_agent));
    return isAdded() ? tr("Added to %1 on this computer.").arg(name()) : tr("Not connected.");
}

AgentConnection::Mood AgentConnection::mood() const
{
    switch (situation()) {
    case AgentSituation::connected:
        return Mood::Good;
    case AgentSituation::added:
    case AgentSituation::notSignedIn:
    case AgentSituation::disconnected:
        return Mood::Note;
    case AgentSituation::missing:
    case AgentSituation::noAnswer:
    case AgentSituation::failed:
    case AgentSituation::notDisconnected:
        return Mood::Bad;
    case AgentSituation::none:
        break;
    }
    return isAdded() ? Mood::Note : Mood::Quiet;
}

bool AgentConnection::asksToCopy() const
{
    const AgentSituation how = situation();
    return how == AgentSituation::missing || how == AgentSituation::noAnswer ||
           how == AgentSituation::notDisconnected;
}

bool AgentConnection::canConnect() const
{
    const AgentSituation how = situation();
    return !m_endpoint.empty() && !isRunning() && how != AgentSituation::connected &&
           how != AgentSituation::added && how != AgentSituation::notDisconnected;
}

bool AgentConnection::canDisconnect() const
{
    if (isRunning() || !isAdded())
        return false;
    // After a sign-in that was not finished, or that failed, the next step is to try it again.
    const AgentSituation how = situation();
    return how != AgentSituation::notSignedIn && how != AgentSituation::failed;
}

QString AgentConnection::addCommand() const
{
    return m_endpoint.empty() ? QString() : QString::fromStdString(orvane::addCommand(m_agent, m_endpoint));
}

QString AgentConnection::removeCommand() const
{
    return QString::fromStdString(orvane::removeCommand(m_agent));
}

void AgentConnection::begin()
{
    if (!canConnect())
        return;
    m_tried = m_endpoint;
    m_isRemoving = false;
    m_connector->connectAgent(m_agent, m_endpoint);
}

void AgentConnection::remove()
{
    if (!canDisconnect())
        return;
    m_tried = m_endpoint;
    m_isRemoving = true;
    m_connector->disconnectAgent(m_agent);
}

void AgentConnection::cancel()
{
    m_connector->cancel(m_agent);
}

} // namespace orvane
