// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Support/Task.h"

#include <QObject>
#include <QString>
#include <QVariantList>
#include <optional>
#include <set>
#include <string>

namespace orvane {

class AppModel;

/// An agent that asks for leave, and the user's answer. One at a time: a later request takes the place of one
/// that was not answered.
///
/// Owner: the AgentConnections. Thread: the main thread; the AppModel outlives it.
class AgentAsking final : public QObject {
    Q_OBJECT
    /// There is something to answer, or to be told.
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    /// Why it cannot be answered, or could not; empty while all is well.
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
    Q_PROPERTY(bool canAnswer READ canAnswer NOTIFY changed)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)
    /// What the agent calls itself.
    Q_PROPERTY(QString name READ name NOTIFY changed)
    /// Where the answer goes.
    Q_PROPERTY(QString host READ host NOTIFY changed)
    Q_PROPERTY(bool mayPropose READ mayPropose NOTIFY changed)
    /// Of each: id, name, organization (empty where there is one alone), isChosen. The list stays as it is
    /// while one is chosen, so that the keyboard stays where it is.
    Q_PROPERTY(QVariantList workspaces READ workspaces NOTIFY workspacesChanged)

public:
    explicit AgentAsking(AppModel &app);

    /// An address that a browser was sent on to; nothing happens for one that is no agent's request. Waits
    /// for an account where none is open yet.
    void take(const QString &address);

    bool isOpen() const { return m_preview || !m_problem.isEmpty(); }
    const QString &problem() const { return m_problem; }
    bool canAnswer() const { return m_preview && !m_isBusy; }
    bool isBusy() const { return m_isBusy; }
    QString name() const;
    QString host() const;
    bool mayPropose() const;
    QVariantList workspaces() const;

    Q_INVOKABLE void choose(const QString &workspaceId, bool isChosen);
    Q_INVOKABLE void allow();
    /// Tells the agent that it may not; where it cannot be told, only forgets it.
    Q_INVOKABLE void refuse();

Q_SIGNALS:
    void changed();
    void workspacesChanged();
    /// The user comes from the browser and looks for the window.
    void wanted();
    /// An agent was answered: the list of those signed in will be another.
    void answered();
    /// The agent is not on this computer: the browser takes it the answer.
    void browserWanted(const QString &address);

private:
    void follow();
    void forget();
    Task<> look(int turn);
    Task<> answer(bool isApproved, int turn);
    void fail(const QString &problem);

    AppModel *m_app;
    /// Counts the requests, so that what comes back for an earlier one is known.
    int m_turn = 0;
    std::optional<OAuthAuthorizationRequest> m_request;
    std::optional<OAuthAuthorizationPreview> m_preview;
    std::set<std::string> m_chosen;
    QString m_problem;
    bool m_isLookedAt = false;
    bool m_isBusy = false;
};

} // namespace orvane
