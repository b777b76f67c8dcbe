// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Settings/AgentAsking.h"
#include "Screens/Settings/AgentConnection.h"
#include "Screens/Settings/SignedInAgents.h"
#include "SignIn/CallbackSocket.h"

#include <QObject>
#include <memory>

namespace orvane {

class AppModel;

/// The coding agents that can be told of the server in use, those that ask for leave there, and those that
/// have it.
///
/// Owner: the SettingsModel. Thread: the main thread; the AppModel outlives it.
class AgentConnections final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLocal READ isLocal NOTIFY changed)
    Q_PROPERTY(QString place READ place NOTIFY changed)
    Q_PROPERTY(orvane::AgentConnection *claudeCode READ claudeCode CONSTANT)
    Q_PROPERTY(orvane::AgentConnection *codex READ codex CONSTANT)
    Q_PROPERTY(orvane::AgentAsking *asking READ asking CONSTANT)
    Q_PROPERTY(orvane::SignedInAgents *signedIn READ signedIn CONSTANT)

public:
    explicit AgentConnections(AppModel &app);

    /// The server is the one on this computer.
    bool isLocal() const;
    QString place() const;
    AgentConnection *claudeCode() { return &m_claudeCode; }
    AgentConnection *codex() { return &m_codex; }
    AgentAsking *asking() { return &m_asking; }
    SignedInAgents *signedIn() { return &m_signedIn; }

    /// Calls off whatever is under way.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();

private:
    void follow();
    void listen();

    AppModel *m_app;
    AgentConnector m_connector;
    AgentConnection m_claudeCode;
    AgentConnection m_codex;
    AgentAsking m_asking;
    SignedInAgents m_signedIn;
    /// While an agent is being connected: its request may come from the browser.
    std::unique_ptr<CallbackSocket> m_socket;
};

} // namespace orvane
