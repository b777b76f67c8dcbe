// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

namespace orvane {

class AppModel;
class SettingsWriter;

/// The settings of the workspace in use, which its administrators change and others read.
///
/// Owner: the SettingsModel. Thread: the main thread; the writer outlives it.
class WorkspaceRules final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isKnown READ isKnown NOTIFY changed)
    Q_PROPERTY(bool mayEdit READ mayEdit NOTIFY changed)
    Q_PROPERTY(QString note READ note NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QString currency READ currency NOTIFY changed)
    Q_PROPERTY(QString rate READ rate NOTIFY changed)
    Q_PROPERTY(QString lockedBefore READ lockedBefore NOTIFY changed)
    Q_PROPERTY(bool onlyAdminsCreateProjects READ onlyAdminsCreateProjects NOTIFY changed)
    Q_PROPERTY(bool onlyAdminsCreateTags READ onlyAdminsCreateTags NOTIFY changed)
    Q_PROPERTY(bool requireDescription READ requireDescription NOTIFY changed)
    Q_PROPERTY(bool requireProject READ requireProject NOTIFY changed)
    Q_PROPERTY(bool requireTask READ requireTask NOTIFY changed)
    Q_PROPERTY(bool requireTag READ requireTag NOTIFY changed)

public:
    enum Text { Name, Currency, Rate, LockedBefore };
    Q_ENUM(Text)
    enum Rule {
        OnlyAdminsCreateProjects,
        OnlyAdminsCreateTags,
        RequireDescription,
        RequireProject,
        RequireTask,
        RequireTag
    };
    Q_ENUM(Rule)

    WorkspaceRules(AppModel &app, SettingsWriter &writer);

    bool isKnown() const;
    /// An administrator, and the server is there.
    bool mayEdit() const;
    /// Why nothing can be changed; empty when it can.
    QString note() const;
    QString name() const;
    QString currency() const;
    QString rate() const;
    /// "2026-03-01"; empty for none.
    QString lockedBefore() const;
    bool onlyAdminsCreateProjects() const;
    bool onlyAdminsCreateTags() const;
    bool requireDescription() const;
    bool requireProject() const;
    bool requireTask() const;
    bool requireTag() const;

    /// Takes a typed text over. Answers what is wrong with it, for people; empty when it was taken.
    Q_INVOKABLE QString setText(Text which, const QString &typed);
    Q_INVOKABLE void setRule(Rule which, bool holds);

Q_SIGNALS:
    void changed();

private:
    QString setName(const QString &typed);
    QString setCurrency(const QString &typed);
    QString setRate(const QString &typed);
    QString setLockedBefore(const QString &typed);

    AppModel *m_app;
    SettingsWriter *m_writer;
};

} // namespace orvane
