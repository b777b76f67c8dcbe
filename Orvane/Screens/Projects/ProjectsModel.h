// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Screens/Projects/CatalogRemoval.h"
#include "Screens/Projects/NameList.h"
#include "Screens/Projects/ProjectEditor.h"
#include "Screens/Projects/ProjectRows.h"

#include <QObject>
#include <QPointer>

namespace orvane {

class AppModel;

/// The section of projects: clients with their projects and tasks, and the tags. Nothing is worked out while
/// nobody looks at it.
///
/// Owner: the program. Thread: the main thread; the AppModel outlives it.
class ProjectsModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(Kind kind READ kind WRITE setKind NOTIFY kindChanged)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY queryChanged)
    Q_PROPERTY(bool isShown READ isShown WRITE setShown NOTIFY shownChanged)
    Q_PROPERTY(bool showsArchived READ showsArchived WRITE setShowsArchived NOTIFY changed)
    Q_PROPERTY(bool mayEdit READ mayEdit NOTIFY changed)
    Q_PROPERTY(bool isAway READ isAway NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(orvane::ProjectRows *rows READ rows CONSTANT)
    Q_PROPERTY(orvane::NameList *clients READ clients CONSTANT)
    Q_PROPERTY(orvane::NameList *tags READ tags CONSTANT)
    Q_PROPERTY(orvane::ProjectEditor *editor READ editor CONSTANT)
    Q_PROPERTY(orvane::CatalogRemoval *removal READ removal CONSTANT)

public:
    enum Kind { Projects, Clients, Tags };
    Q_ENUM(Kind)

    explicit ProjectsModel(AppModel &app);

    Kind kind() const { return m_kind; }
    void setKind(Kind kind);
    QString query() const { return m_query; }
    void setQuery(const QString &query);
    bool isShown() const { return m_isShown; }
    void setShown(bool isShown);
    bool showsArchived() const { return m_showsArchived; }
    void setShowsArchived(bool showsArchived);
    /// Whether the workspace lets this member make and change projects, clients and tasks.
    bool mayEdit() const;
    /// The server is away; the catalog cannot be changed meanwhile.
    bool isAway() const;
    /// What stands where nothing is listed; empty when something is.
    QString emptyText() const;
    ProjectRows *rows() { return &m_rows; }
    NameList *clients() { return &m_clients; }
    NameList *tags() { return &m_tags; }
    ProjectEditor *editor() { return &m_editor; }
    CatalogRemoval *removal() { return &m_removal; }

    /// A new project, client or tag, whichever are looked at.
    Q_INVOKABLE void beginNew();
    Q_INVOKABLE void beginNewProject();
    Q_INVOKABLE void find();

Q_SIGNALS:
    void kindChanged();
    void queryChanged();
    void shownChanged();
    void changed();
    /// The field to search in is asked for.
    void findWanted();

private:
    void follow();
    void update();

    AppModel *m_app;
    QPointer<Tracker> m_tracker;
    Kind m_kind = Projects;
    QString m_query;
    bool m_isShown = false;
    bool m_showsArchived = false;
    ProjectRows m_rows;
    NameList m_clients;
    NameList m_tags;
    ProjectEditor m_editor;
    CatalogRemoval m_removal;
};

} // namespace orvane
