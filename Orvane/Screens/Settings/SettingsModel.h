// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Settings/AccountDetails.h"
#include "Screens/Settings/AccountLogins.h"
#include "Screens/Settings/AgentConnections.h"
#include "Screens/Settings/SettingsWriter.h"
#include "Screens/Settings/ShortcutRows.h"
#include "Screens/Settings/SyncDetails.h"
#include "Screens/Settings/TimeSettings.h"
#include "Screens/Settings/WorkspaceRules.h"

#include <QObject>

namespace orvane {

class AppModel;

/// The section of settings: what its pages show and change.
///
/// Owner: the program. Thread: the main thread; the AppModel outlives it.
class SettingsModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString page READ page WRITE setPage NOTIFY pageChanged)
    Q_PROPERTY(bool isAway READ isAway NOTIFY changed)
    Q_PROPERTY(bool isSending READ isSending NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
    Q_PROPERTY(orvane::TimeSettings *time READ time CONSTANT)
    Q_PROPERTY(orvane::ShortcutRows *shortcuts READ shortcuts CONSTANT)
    Q_PROPERTY(orvane::WorkspaceRules *rules READ rules CONSTANT)
    Q_PROPERTY(orvane::AgentConnections *agents READ agents CONSTANT)
    Q_PROPERTY(orvane::SyncDetails *sync READ sync CONSTANT)
    Q_PROPERTY(orvane::AccountDetails *account READ account CONSTANT)
    Q_PROPERTY(orvane::AccountLogins *logins READ logins CONSTANT)

public:
    explicit SettingsModel(AppModel &app);

    /// The page that is looked at, by the name that the list of pages gives it.
    QString page() const { return m_page; }
    void setPage(const QString &page);
    /// What the server keeps cannot be changed now.
    bool isAway() const { return m_writer.isAway(); }
    /// What was changed is not with the server yet.
    bool isSending() const { return m_writer.isSending(); }
    /// Why the last change was not taken; empty when all is well.
    QString problem() const { return m_writer.problem(); }
    TimeSettings *time() { return &m_time; }
    ShortcutRows *shortcuts() { return &m_shortcuts; }
    WorkspaceRules *rules() { return &m_rules; }
    AgentConnections *agents() { return &m_agents; }
    SyncDetails *sync() { return &m_sync; }
    AccountDetails *account() { return &m_account; }
    AccountLogins *logins() { return &m_logins; }

    Q_INVOKABLE void find();
    /// The examples of the pages are of now.
    Q_INVOKABLE void refresh();

Q_SIGNALS:
    void pageChanged();
    void changed();
    /// The field to search in is asked for.
    void findWanted();

private:
    QString m_page = QStringLiteral("time");
    SettingsWriter m_writer;
    TimeSettings m_time;
    ShortcutRows m_shortcuts;
    WorkspaceRules m_rules;
    AgentConnections m_agents;
    SyncDetails m_sync;
    AccountDetails m_account;
    AccountLogins m_logins;
};

} // namespace orvane
