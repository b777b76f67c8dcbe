// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Settings/AgentConnection.h"

#include <QObject>

namespace orvane {

class AppModel;

/// The coding agents that can be told of the server in use.
///
/// Owner: the SettingsModel. Thread: the main thread; the AppModel outlives it.
class AgentConnections final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isLocal READ isLocal NOTIFY changed)
    Q_PROPERTY(QString place READ place NOTIFY changed)
    Q_PROPERTY(orvane::AgentConnection *claudeCode READ claudeCode CONSTANT)
    Q_PROPERTY(orvane::AgentConnection *codex READ codex CONSTANT)

public:
    explicit AgentConnections(AppModel &app);

    /// The server is the one on this computer.
    bool isLocal() const;
    QString place() const;
    AgentConnection *claudeCode() { return &m_claudeCode; }
    AgentConnection *codex() { return &m_codex; }

    /// Calls off whatever is under way.
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();

private:
    void follow();

    AppModel *m_app;
    AgentConnector m_connector;
    AgentConnection m_claudeCode;
    AgentConnection m_codex;
};

} // namespace orvane
