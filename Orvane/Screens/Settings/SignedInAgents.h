// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Task.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantList>
#include <vector>

namespace orvane {

class Account;
class AppModel;
class LiveSync;

/// The agents that the user let in, wherever they were. Asked for while somebody looks at them.
///
/// Owner: the AgentConnections. Thread: the main thread; the AppModel outlives it.
class SignedInAgents final : public QObject {
    Q_OBJECT
    /// Of each: id, name, reach ("Studio: read, propose"), used ("since 3 Nov, used today, 15:44").
    Q_PROPERTY(QVariantList agents READ agents NOTIFY changed)
    /// Why they could not be asked for; empty while all is well.
    Q_PROPERTY(QString problem READ problem NOTIFY changed)

public:
    explicit SignedInAgents(AppModel &app);

    QVariantList agents() const;
    const QString &problem() const { return m_problem; }

    Q_INVOKABLE void setLookedAt(bool isLookedAt);
    Q_INVOKABLE void signOut(const QString &id);
    /// Asks anew, if anybody looks.
    void refresh();

Q_SIGNALS:
    void changed();

private:
    void follow();
    void hearLive();
    Task<> load();
    Task<> doSignOut(std::string id);

    AppModel *m_app;
    QPointer<Account> m_account;
    QPointer<LiveSync> m_live;
    std::vector<SessionResponse> m_agents;
    QString m_problem;
    bool m_isLookedAt = false;
};

} // namespace orvane
