// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Task.h"
#include "Tracker/CatalogUse.h"

#include <QObject>
#include <QString>
#include <optional>
#include <string>

namespace orvane {

class AppModel;

/// What is about to be deleted from the catalog, until the user has answered: what hangs on it is looked up
/// and said first. A client holds no time; its projects go on without one.
///
/// Owner: the ProjectsModel. Thread: the main thread; the AppModel outlives it.
class CatalogRemoval final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString itemId READ itemId NOTIFY changed)
    Q_PROPERTY(QString name READ name NOTIFY changed)
    Q_PROPERTY(QString effect READ effect NOTIFY changed)
    Q_PROPERTY(bool isKnown READ isKnown NOTIFY changed)
    Q_PROPERTY(bool isBusy READ isBusy NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)

public:
    enum Kind { Project, TaskOfProject, Tag, Client };
    Q_ENUM(Kind)

    explicit CatalogRemoval(AppModel &app) : m_app(&app) {}

    /// Empty while nothing is asked.
    QString itemId() const { return QString::fromStdString(m_id); }
    QString name() const { return m_name; }
    /// What is lost, in figures: "21 of your entries, 14h 43m, lose project and task."
    QString effect() const { return m_effect; }
    /// What hangs on it has been found out; before that nothing can be deleted.
    bool isKnown() const { return m_isKnown; }
    bool isBusy() const { return m_isBusy; }
    /// Why it cannot be deleted now; empty when all is well.
    QString problem() const { return m_problem; }

    Q_INVOKABLE void ask(Kind kind, const QString &id);
    /// Leaves everything as it is.
    Q_INVOKABLE void keep();
    /// Deletes it; once that is done nothing is asked any more.
    Q_INVOKABLE void remove();

Q_SIGNALS:
    void changed();

private:
    Task<> findUse(std::string id);
    Task<> doRemove(std::string id);
    void tellUse(const CatalogUse &use);
    QString loss() const;

    AppModel *m_app;
    Kind m_kind = Project;
    std::string m_id;
    std::string m_projectId; ///< of a task
    QString m_name;
    QString m_effect;
    QString m_problem;
    bool m_isKnown = false;
    bool m_isBusy = false;
};

} // namespace orvane
