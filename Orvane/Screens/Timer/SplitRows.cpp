// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/SplitRows.h"

namespace orvane {

int SplitRows::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : count();
}

QHash<int, QByteArray> SplitRows::roleNames() const
{
    return {{descriptionRole, "description"},
            {projectRole, "project"},
            {taskRole, "task"},
            {colorRole, "projectColor"},
            {isSplitRole, "isSplit"},
            {isBillableRole, "isBillable"},
            {percentRole, "percent"},
            {percentTextRole, "percentText"},
            {percentBeforeRole, "percentBefore"},
            {timesRole, "times"},
            {lengthRole, "length"}};
}

QVariant SplitRows::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || !has(index.row()))
        return {};
    const Row &row = at(index.row());
    const ProjectResponse *project = projectOf(row);
    switch (role) {
    case descriptionRole:
        return row.description;
    case projectRole:
        return project != nullptr ? QString::fromStdString(project->name) : QString();
    case taskRole:
        return taskOf(row);
    case colorRole:
        return project != nullptr ? QString::fromStdString(project->color) : QString();
    case isSplitRole:
        return !row.draft.details().shares.empty();
    case isBillableRole:
        return row.draft.details().isBillable;
    case percentRole:
        return static_cast<int>(row.percent);
    case percentTextRole:
        return index.row() == m_typedRow ? m_typedPercent : QString::number(row.percent);
    case percentBeforeRole:
        return static_cast<int>(percentBefore(index.row()));
    case timesRole:
        return row.times;
    case lengthRole:
        return QString::fromStdString(Durations::shortLabel(static_cast<double>(row.minutes * 60)));
    default:
        return {};
    }
}

const ProjectResponse *SplitRows::projectOf(const Row &row) const
{
    const auto &id = row.draft.details().projectId;
    return id && m_tracker ? m_tracker->catalog().project(*id) : nullptr;
}

QString SplitRows::taskOf(const Row &row) const
{
    const auto &id = row.draft.details().taskId;
    const TaskResponse *task = id && m_tracker ? m_tracker->catalog().task(*id) : nullptr;
    return task != nullptr ? QString::fromStdString(task->name) : QString();
}

std::int64_t SplitRows::percentBefore(int row) const
{
    std::int64_t before = 0;
    for (int above = 0; above < row; ++above)
        before += at(above).percent;
    return before;
}

void SplitRows::tell(int row, const QList<int> &roles)
{
    Q_EMIT dataChanged(index(row), index(row), roles);
}

void SplitRows::tellAll(const QList<int> &roles)
{
    if (!m_rows.empty())
        Q_EMIT dataChanged(index(0), index(count() - 1), roles);
}

// What they say

void SplitRows::setDescription(int row, const QString &description)
{
    if (!has(row) || at(row).description == description)
        return;
    at(row).description = description;
    at(row).isDescribed = true;
    tell(row, {descriptionRole});
}

void SplitRows::setProject(int row, const QString &projectId, const QString &taskId)
{
    if (!has(row) || !m_tracker)
        return;
    at(row).picked = Pick{projectId.toStdString(), taskId.toStdString()};
    pick(at(row).draft, *at(row).picked);
    tell(row, {projectRole, taskRole, colorRole, isSplitRole, isBillableRole});
}

void SplitRows::setBillable(int row, bool isBillable)
{
    if (!has(row))
        return;
    at(row).draft.setBillable(isBillable);
    tell(row, {isBillableRole});
}

void SplitRows::pick(EntryDraft &draft, const Pick &picked) const
{
    const auto &[projectId, taskId] = picked;
    if (!taskId.empty()) {
        draft.setTask(taskId, m_tracker->catalog());
        return;
    }
    draft.setProject(projectId.empty() ? std::nullopt : std::optional(projectId), m_tracker->catalog());
    draft.setTask(std::nullopt, m_tracker->catalog());
}

bool SplitRows::isChanged(int row) const
{
    return at(row).isDescribed || at(row).picked;
}

EntryDetails SplitRows::detailsOver(int row, const TimeEntryResponse &entry) const
{
    EntryDraft draft = EntryDraft::of(entry);
    if (at(row).isDescribed)
        draft.setDescription(at(row).description.trimmed().toStdString());
    if (at(row).picked)
        pick(draft, *at(row).picked);
    EntryRequest said = draft.at({entry.start, entry.stop});
    // Shares that say what the entry says go on doing so.
    for (SplitPart &share : said.details.shares) {
        if (!said.describeParts)
            share.description.clear();
    }
    return std::move(said.details);
}

std::vector<SplitPart> SplitRows::parts() const
{
    std::vector<SplitPart> parts;
    for (const Row &row : m_rows) {
        const EntryDetails &details = row.draft.details();
        parts.push_back({.projectId = details.projectId,
                         .taskId = details.taskId,
                         .isBillable = details.isBillable,
                         .percent = row.percent,
                         .description = row.description.trimmed().toStdString()});
    }
    return parts;
}

// What there is of them

void SplitRows::setTracker(Tracker *tracker)
{
    if (m_tracker)
        m_tracker->catalog().disconnect(this);
    m_tracker = tracker;
    if (m_tracker)
        connect(&m_tracker->catalog(), &Catalog::changed, this,
                [this] { tellAll({projectRole, taskRole, colorRole}); });
    reset({});
}

SplitRows::Row SplitRows::rowOf(const TimeEntryResponse &saying)
{
    Row row;
    row.draft = EntryDraft::of(saying);
    row.description = QString::fromStdString(saying.description);
    return row;
}

void SplitRows::reset(const std::vector<TimeEntryResponse> &saying)
{
    beginResetModel();
    m_rows.clear();
    m_typedRow = -1;
    for (const TimeEntryResponse &entry : saying)
        m_rows.push_back(rowOf(entry));
    endResetModel();
    Q_EMIT countChanged();
}

void SplitRows::append(const TimeEntryResponse &saying)
{
    beginInsertRows({}, count(), count());
    m_rows.push_back(rowOf(saying));
    endInsertRows();
    Q_EMIT countChanged();
}

void SplitRows::remove(int row)
{
    beginRemoveRows({}, row, row);
    m_rows.erase(m_rows.begin() + row);
    m_typedRow = -1;
    endRemoveRows();
    Q_EMIT countChanged();
}

SplitPercents::Percents SplitRows::percents() const
{
    SplitPercents::Percents percents;
    for (const Row &row : m_rows)
        percents.push_back(row.percent);
    return percents;
}

void SplitRows::setPercents(const SplitPercents::Percents &percents)
{
    for (std::size_t i = 0; i < percents.size(); ++i)
        m_rows[i].percent = percents[i];
    tellAll({percentRole, percentTextRole, percentBeforeRole});
}

void SplitRows::setTypedPercent(int row, const QString &text)
{
    m_typedRow = row;
    m_typedPercent = text;
    tellAll({percentTextRole});
}

void SplitRows::setTimes(int row, const QString &times)
{
    at(row).times = times;
    tell(row, {timesRole});
}

void SplitRows::setMinutes(const std::vector<std::int64_t> &minutes)
{
    for (std::size_t i = 0; i < minutes.size(); ++i)
        m_rows[i].minutes = minutes[i];
    tellAll({lengthRole});
}

} // namespace orvane
