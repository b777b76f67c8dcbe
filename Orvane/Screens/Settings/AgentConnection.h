// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentConnector/AgentConnector.h"
#include "Support/Task.h"

#include <QObject>
#include <QString>
#include <string>

namespace orvane {

/// One agent as Settings shows it: how connecting went, and what to copy instead.
///
/// Owner: the AgentConnections. Thread: the main thread; the connector outlives it.
class AgentConnection final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString name READ name CONSTANT)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY changed)
    Q_PROPERTY(QString waiting READ waiting NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(Mood mood READ mood NOTIFY changed)
    Q_PROPERTY(bool asksToCopy READ asksToCopy NOTIFY changed)
    Q_PROPERTY(bool canConnect READ canConnect NOTIFY changed)
    Q_PROPERTY(bool canDisconnect READ canDisconnect NOTIFY changed)
    Q_PROPERTY(QString addCommand READ addCommand NOTIFY changed)
    Q_PROPERTY(QString removeCommand READ removeCommand CONSTANT)

public:
    /// What kind of news the message is.
    enum class Mood { Quiet, Good, Note, Bad };
    Q_ENUM(Mood)

    AgentConnection(AgentConnector &connector, CodingAgent agent);

    /// The address for agents of the server in use; empty while there is none.
    void setEndpoint(const std::string &endpoint);

    QString name() const;
    bool isRunning() const { return m_connector->isRunning(m_agent); }
    /// What to say while it runs.
    QString waiting() const;
    QString message() const;
    Mood mood() const;
    /// The message asks to copy the commands instead.
    bool asksToCopy() const;
    bool canConnect() const;
    bool canDisconnect() const;
    QString addCommand() const;
    QString removeCommand() const;

    /// Adds the server to the agent, and begins the sign-in there.
    Q_INVOKABLE void begin();
    /// Takes the server out of the agent.
    Q_INVOKABLE void remove();
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();

private:
    /// How the last attempt with the server in use ended.
    AgentSituation situation() const;
    /// The agent was told of the server in use, now or earlier.
    bool isAdded() const;

    AgentConnector *m_connector;
    CodingAgent m_agent;
    std::string m_endpoint;
    /// Where the last attempt led.
    std::string m_tried;
    bool m_isRemoving = false;
};

} // namespace orvane
