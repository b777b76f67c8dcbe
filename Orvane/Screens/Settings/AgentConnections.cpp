// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/AgentConnections.h"

#include "AppModel/AppModel.h"

namespace orvane {

AgentConnections::AgentConnections(AppModel &app)
    : m_app(&app)
    , m_connector({.folder = app.installation().root()})
    , m_claudeCode(m_connector, CodingAgent::claudeCode)
    , m_codex(m_connector, CodingAgent::codex)
{
    connect(m_app, &AppModel::trackerChanged, this, &AgentConnections::follow);
    connect(m_app, &AppModel::placeChanged, this, &AgentConnections::follow);
    follow();
}

void AgentConnections::follow()
{
    const Account *account = m_app->account();
    const std::string endpoint = account != nullptr ? agentEndpoint(account->server()) : std::string();
    m_claudeCode.setEndpoint(endpoint);
    m_codex.setEndpoint(endpoint);
    Q_EMIT changed();
}

bool AgentConnections::isLocal() const
{
    return m_app->account() != nullptr && m_app->account()->isLocal();
}

QString AgentConnections::place() const
{
    return m_app->placeName();
}

void AgentConnections::cancel()
{
    m_claudeCode.cancel();
    m_codex.cancel();
}

} // namespace orvane
