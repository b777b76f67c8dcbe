// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Settings/AgentConnections.h"

#include "AppModel/AppModel.h"
#include "SignIn/SchemeHandler.h"

#include <QCoreApplication>

namespace orvane {

AgentConnections::AgentConnections(AppModel &app)
    : m_app(&app)
    , m_connector({.folder = app.installation().root()})
    , m_claudeCode(m_connector, CodingAgent::claudeCode)
    , m_codex(m_connector, CodingAgent::codex)
    , m_asking(app)
    , m_signedIn(app)
{
    connect(&m_connector, &AgentConnector::changed, this, &AgentConnections::listen);
    connect(&m_asking, &AgentAsking::answered, &m_signedIn, &SignedInAgents::refresh);
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

/// For the browser that an agent's sign-in opens.
void AgentConnections::listen()
{
    if (!m_claudeCode.isRunning() && !m_codex.isRunning()) {
        m_socket.reset();
        m_signedIn.refresh();
        return;
    }
    if (m_socket)
        return;
    // Where the system cannot be told, the browser says that it does not know the address.
    registerSchemeHandler(QCoreApplication::applicationFilePath().toStdString());
    m_socket = std::make_unique<CallbackSocket>(CallbackSocket::usualFolder());
    connect(m_socket.get(), &CallbackSocket::arrived, &m_asking, &AgentAsking::take, Qt::QueuedConnection);
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
