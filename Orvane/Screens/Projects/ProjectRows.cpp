// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Projects/ProjectRows.h"

#include "Catalog/NameOrder.h"
#include "Screens/Projects/ProjectTexts.h"
#include "Time/Durations.h"
#include "Tracker/Tracker.h"

namespace orvane {

namespace {

QString lengthText(std::int64_t seconds)
{
    return seconds == 0 ? QStringLiteral("–")
                        : QString::fromStdString(Durations::shortLabel(static_cast<double>(seconds)));
}

QString countText(std::size_t count)
{
    return count == 1 ? ProjectRows::tr("1 project") : ProjectRows::tr("%1 projects").arg(count);
}

/// Makes the rows of one catalog.
class RowMaker {
public:
    RowMaker(const Tracker &tracker, const CatalogWeek &week) : m_tracker(tracker), m_week(week) {}

    ProjectRow project(const ProjectResponse &project) const
    {
        const std::int64_t seconds = m_week.project(project.id);
        const std::int64_t most = m_week.most();
        const ClientResponse *client =
            project.clientId ? m_tracker.catalog().client(*project.clientId) : nullptr;
        const std::string currency = m_tracker.settings() ? m_tracker.settings()->currency : std::string();
        return {.kind = project.isArchived ? ProjectRows::ArchivedProject : ProjectRows::Project,
                .id = project.id,
                .name = QString::fromStdString(project.name),
                .detail = {},
                .tasks = project.tasks.empty() ? QStringLiteral("–") : QString::number(project.tasks.size()),
                .week = lengthText(seconds),
                .share = most > 0 ? static_cast<double>(seconds) / static_cast<double>(most) : 0,
                .estimate =
                    project.estimateSeconds ? estimateText(*project.estimateSeconds) : QStringLiteral("–"),
                .rate = project.hourlyRate ? rateWithCurrency(*project.hourlyRate, currency)
                                           : QStringLiteral("–"),
                .color = QString::fromStdString(project.color),
                .client = client != nullptr ? QString::fromStdString(client->name) : QString(),
                .isPrivate = project.isPrivate};
    }

    void appendGroup(std::vector<ProjectRow> &rows, const ProjectGroup &group, const QString &query) const
    {
        const bool holdsAll = group.client && nameHolds(group.client->name, query);
        std::vector<ProjectRow> found;
        std::int64_t seconds = 0;
        for (const ProjectResponse &each : group.projects) {
            if (!holdsAll && !nameHolds(each.name, query))
                continue;
            found.push_back(project(each));
            seconds += m_week.project(each.id);
        }
        if (found.empty())
            return;
        rows.push_back(
            {.kind = ProjectRows::Client,
             .id = group.client ? group.client->id : std::string(),
             .name = group.client ? QString::fromStdString(group.client->name) : ProjectRows::tr("No client"),
             .detail = countText(found.size()),
             .week = lengthText(seconds)});
        rows.insert(rows.end(), found.begin(), found.end());
    }

private:
    const Tracker &m_tracker;
    const CatalogWeek &m_week;
};

std::vector<ProjectResponse> archivedOnes(const Catalog &catalog, const QString &query)
{
    std::vector<ProjectResponse> found;
    for (const ProjectResponse &project : catalog.projects()) {
        if (project.isArchived && nameHolds(project.name, query))
            found.push_back(project);
    }
    std::ranges::sort(found, {}, [](const ProjectResponse &project) { return nameOrderKey(project.name); });
    return found;
}

} // namespace

void ProjectRows::update(const Tracker &tracker, const CatalogWeek &week, const QString &query,
                         bool showsArchived)
{
    const RowMaker maker(tracker, week);
    std::vector<ProjectRow> made;
    std::vector<ProjectGroup> groups = tracker.catalog().projectGroups();
    // Those without a client, which pickers have first, are the rest here.
    if (!groups.empty() && !groups.front().client)
        std::ranges::rotate(groups, groups.begin() + 1);
    for (const ProjectGroup &group : groups)
        maker.appendGroup(made, group, query);
    const std::vector<ProjectResponse> archived = archivedOnes(tracker.catalog(), query);
    if (!archived.empty())
        made.push_back({.kind = ArchivedHead, .name = tr("Archived"), .detail = countText(archived.size())});
    for (const ProjectResponse &project : archived) {
        if (showsArchived || !query.trimmed().isEmpty())
            made.push_back(maker.project(project));
    }
    show(std::move(made));
}

QHash<int, QByteArray> ProjectRows::roleNames() const
{
    return {{kindRole, "kind"},         {itemIdRole, "itemId"},       {nameRole, "name"},
            {detailRole, "detail"},     {tasksRole, "tasks"},         {weekRole, "week"},
            {shareRole, "share"},       {estimateRole, "estimate"},   {rateRole, "rate"},
            {colorRole, "serverColor"}, {isPrivateRole, "isPrivate"}, {spokenRole, "spoken"}};
}

QVariant ProjectRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const ProjectRow &row = rows()[static_cast<std::size_t>(index.row())];
    switch (role) {
    case kindRole:
        return row.kind;
    case itemIdRole:
        return QString::fromStdString(row.id);
    case nameRole:
        return row.name;
    case detailRole:
        return row.detail;
    case tasksRole:
        return row.tasks;
    case weekRole:
        return row.week;
    case shareRole:
        return row.share;
    case estimateRole:
        return row.estimate;
    case rateRole:
        return row.rate;
    case colorRole:
        return row.color;
    case isPrivateRole:
        return row.isPrivate;
    case spokenRole: {
        QStringList parts{row.name};
        if (!row.detail.isEmpty())
            parts << row.detail;
        if (!row.client.isEmpty())
            parts << row.client;
        if (row.isPrivate)
            parts << tr("private");
        if (row.week != QLatin1String("–") && !row.week.isEmpty())
            parts << tr("%1 this week").arg(row.week);
        return parts.join(QStringLiteral(", "));
    }
    default:
        return {};
    }
}

} // namespace orvane
