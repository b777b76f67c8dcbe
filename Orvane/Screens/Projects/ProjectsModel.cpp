// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Projects/ProjectsModel.h"

#include "AppModel/AppModel.h"
#include "Time/AppClock.h"

namespace orvane {

ProjectsModel::ProjectsModel(AppModel &app)
    : m_app(&app)
    , m_rows(nullptr)
    , m_clients(app, NameList::Things::clients)
    , m_tags(app, NameList::Things::tags)
    , m_editor(app)
    , m_removal(app)
{
    connect(m_app, &AppModel::trackerChanged, this, &ProjectsModel::follow);
    connect(m_app->sync(), &SyncStatus::changed, this, &ProjectsModel::changed);
    connect(&m_app->tick(), &SecondTick::ticked, this, [this] {
        if (m_tracker && m_tracker->running())
            update();
    });
    follow();
}

void ProjectsModel::follow()
{
    if (m_tracker)
        m_tracker->disconnect(this);
    m_tracker = m_app->tracker();
    m_removal.keep();
    if (m_tracker) {
        connect(m_tracker, &Tracker::entriesChanged, this, &ProjectsModel::update);
        connect(m_tracker, &Tracker::timeChanged, this, &ProjectsModel::update);
        connect(m_tracker, &Tracker::dayTurned, this, &ProjectsModel::update);
        connect(m_tracker, &Tracker::settingsChanged, this, &ProjectsModel::update);
        connect(m_tracker, &Tracker::workspaceChanged, this, &ProjectsModel::update);
        connect(&m_tracker->catalog(), &Catalog::changed, this, &ProjectsModel::update);
    }
    update();
}

void ProjectsModel::update()
{
    if (!m_isShown)
        return;
    if (m_tracker) {
        const CatalogWeek week = CatalogWeek::of(*m_tracker, AppClock::now());
        m_rows.update(*m_tracker, week, m_query, m_showsArchived);
        m_editor.update(week);
    } else {
        m_rows.show({});
    }
    m_clients.update(m_query);
    m_tags.update(m_query);
    Q_EMIT changed();
}

void ProjectsModel::setShown(bool isShown)
{
    if (m_isShown == isShown)
        return;
    m_isShown = isShown;
    Q_EMIT shownChanged();
    update();
}

void ProjectsModel::setKind(Kind kind)
{
    if (m_kind == kind)
        return;
    m_kind = kind;
    Q_EMIT kindChanged();
    setQuery({});
    Q_EMIT changed();
}

void ProjectsModel::setQuery(const QString &query)
{
    if (m_query == query)
        return;
    m_query = query;
    Q_EMIT queryChanged();
    update();
}

void ProjectsModel::setShowsArchived(bool showsArchived)
{
    m_showsArchived = showsArchived;
    update();
}

bool ProjectsModel::mayEdit() const
{
    return m_tracker && m_tracker->rules().mayCreateProjects();
}

bool ProjectsModel::isAway() const
{
    return m_app->account() != nullptr && !m_app->account()->isReachable();
}

QString ProjectsModel::emptyText() const
{
    const QAbstractListModel *shown = m_kind == Projects  ? static_cast<const QAbstractListModel *>(&m_rows)
                                      : m_kind == Clients ? &m_clients
                                                          : &m_tags;
    if (!m_tracker || shown->rowCount({}) > 0)
        return {};
    if (!m_query.trimmed().isEmpty())
        return tr("Nothing here is called “%1”.").arg(m_query.trimmed());
    return m_kind == Projects  ? tr("There are no projects yet. Time can be tracked without one.")
           : m_kind == Clients ? tr("There are no clients yet. They put projects together.")
                               : tr("There are no tags yet. They mark entries of a kind, as #meeting does.");
}

void ProjectsModel::beginNew()
{
    if (m_kind == Tags) {
        m_tags.beginNew();
    } else if (m_kind == Clients) {
        m_clients.beginNew();
    } else if (mayEdit()) {
        setQuery({});
        m_editor.openNew();
    }
}

void ProjectsModel::beginNewProject()
{
    setKind(Projects);
    beginNew();
}

void ProjectsModel::find()
{
    Q_EMIT findWanted();
}

} // namespace orvane
