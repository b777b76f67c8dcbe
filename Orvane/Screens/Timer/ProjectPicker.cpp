// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/ProjectPicker.h"

#include "AppModel/AppModel.h"
#include "Time/AppClock.h"

namespace orvane {

ProjectPicker::ProjectPicker(AppModel &app) : m_app(&app)
{
    connect(m_app, &AppModel::trackerChanged, this, &ProjectPicker::follow);
    follow();
}

void ProjectPicker::follow()
{
    m_tracker = m_app->tracker();
    if (m_tracker)
        connect(&m_tracker->catalog(), &Catalog::changed, this, &ProjectPicker::prepare);
    prepare();
}

void ProjectPicker::prepare()
{
    std::vector<PaletteItem> items = m_tracker
                                         ? PaletteItem::ofCatalog(m_tracker->catalog().projects(), {}, {})
                                         : std::vector<PaletteItem>();
    m_palette = Palette(std::move(items));
    find();
}

void ProjectPicker::setQuery(const QString &query)
{
    if (m_query == query)
        return;
    m_query = query;
    Q_EMIT queryChanged();
    find();
}

void ProjectPicker::find()
{
    const int before = count();
    beginResetModel();
    m_rows.clear();
    if (m_tracker) {
        if (m_query.trimmed().isEmpty())
            m_rows.emplace_back();
        const PaletteUsage usage = m_app->installation().paletteUsage(m_tracker->workspace().id);
        for (const auto &found : m_palette.find(m_query.toStdString(), usage, AppClock::now(), mostRows)) {
            const PaletteItem &item = m_palette.items()[found.item];
            const bool isTask = item.kind == PaletteItem::Kind::task;
            const TaskResponse *task = isTask ? m_tracker->catalog().task(item.id) : nullptr;
            if (!isTask || task != nullptr)
                m_rows.push_back({isTask ? task->projectId : item.id, isTask ? item.id : std::string()});
        }
    }
    endResetModel();
    if (count() != before)
        Q_EMIT countChanged();
}

int ProjectPicker::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QHash<int, QByteArray> ProjectPicker::roleNames() const
{
    return {{nameRole, "name"},
            {aboutRole, "about"},
            {colorRole, "projectColor"},
            {projectIdRole, "projectId"},
            {taskIdRole, "taskId"}};
}

QVariant ProjectPicker::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= count() || !m_tracker)
        return {};
    const Row &row = m_rows[static_cast<std::size_t>(index.row())];
    const Catalog &catalog = m_tracker->catalog();
    const ProjectResponse *project = catalog.project(row.projectId);
    const TaskResponse *task = catalog.task(row.taskId);
    const ClientResponse *client =
        project != nullptr && project->clientId ? catalog.client(*project->clientId) : nullptr;
    switch (role) {
    case nameRole:
        if (project == nullptr)
            return tr("No project");
        return QString::fromStdString(project->name + (task != nullptr ? " › " + task->name : ""));
    case aboutRole:
        return client != nullptr ? QString::fromStdString(client->name) : QString();
    case colorRole:
        return project != nullptr ? QString::fromStdString(project->color) : QString();
    case projectIdRole:
        return QString::fromStdString(row.projectId);
    case taskIdRole:
        return QString::fromStdString(row.taskId);
    default:
        return {};
    }
}

QString ProjectPicker::projectIdAt(int row) const
{
    return data(index(row), projectIdRole).toString();
}

QString ProjectPicker::taskIdAt(int row) const
{
    return data(index(row), taskIdRole).toString();
}

} // namespace orvane
