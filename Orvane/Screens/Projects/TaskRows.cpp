// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Projects/TaskRows.h"

#include "Catalog/NameOrder.h"
#include "Time/Durations.h"

namespace orvane {

namespace {

QString weekText(std::int64_t seconds)
{
    return seconds == 0 ? QStringLiteral("–")
                        : QString::fromStdString(Durations::shortLabel(static_cast<double>(seconds)));
}

} // namespace

void TaskRows::update(const ProjectResponse &project, const CatalogWeek &week)
{
    std::vector<TaskResponse> tasks = project.tasks;
    std::ranges::sort(tasks, {}, [](const TaskResponse &task) {
        return std::tuple(!task.isActive, nameOrderKey(task.name), task.id);
    });
    std::int64_t most = week.taskless(project.id);
    for (const TaskResponse &task : tasks)
        most = std::max(most, week.task(task.id));
    const auto share = [most](std::int64_t seconds) {
        return most > 0 ? static_cast<double>(seconds) / static_cast<double>(most) : 0;
    };
    std::vector<TaskRow> made;
    int open = 0;
    for (const TaskResponse &task : tasks) {
        const std::int64_t seconds = week.task(task.id);
        made.push_back(
            {task.id, QString::fromStdString(task.name), !task.isActive, weekText(seconds), share(seconds)});
        open += task.isActive ? 1 : 0;
    }
    if (const std::int64_t rest = week.taskless(project.id); rest > 0 && !tasks.empty())
        made.push_back({{}, tr("No task"), false, weekText(rest), share(rest)});
    show(std::move(made));
    const int done = static_cast<int>(tasks.size()) - open;
    m_summary = tasks.empty() ? tr("None yet")
                : done == 0   ? tr("%1 open").arg(open)
                              : tr("%1 open, %2 done").arg(open).arg(done);
    Q_EMIT summaryChanged();
}

QHash<int, QByteArray> TaskRows::roleNames() const
{
    return {{itemIdRole, "itemId"},
            {nameRole, "name"},
            {isDoneRole, "isDone"},
            {weekRole, "week"},
            {shareRole, "share"}};
}

QVariant TaskRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const TaskRow &row = rows()[static_cast<std::size_t>(index.row())];
    switch (role) {
    case itemIdRole:
        return QString::fromStdString(row.id);
    case nameRole:
        return row.name;
    case isDoneRole:
        return row.isDone;
    case weekRole:
        return row.week;
    case shareRole:
        return row.share;
    default:
        return {};
    }
}

} // namespace orvane
