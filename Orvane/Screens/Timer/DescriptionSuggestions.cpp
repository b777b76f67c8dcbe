// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Timer/DescriptionSuggestions.h"

#include "AppModel/AppModel.h"
#include "Client/OrvaneClient.h"
#include "Screens/Timer/EntryEditor.h"

#include <QPointer>

namespace orvane {

DescriptionSuggestions::DescriptionSuggestions(AppModel &app, EntryEditor &editor)
    : m_app(&app), m_editor(&editor)
{
    m_rest.setSingleShot(true);
    m_rest.setInterval(rest);
    connect(&m_rest, &QTimer::timeout, this, &DescriptionSuggestions::look);
    connect(m_editor, &EntryEditor::entryChanged, this, &DescriptionSuggestions::close);
    connect(m_app, &AppModel::trackerChanged, this, &DescriptionSuggestions::close);
}

void DescriptionSuggestions::type(const QString &text)
{
    m_typed = text.trimmed().toStdString();
    if (m_typed.empty())
        close();
    else
        m_rest.start();
}

void DescriptionSuggestions::close()
{
    m_rest.stop();
    m_typed.clear();
    show({});
}

void DescriptionSuggestions::look()
{
    const Tracker *tracker = m_app->tracker();
    if (tracker == nullptr)
        return;
    const auto entry = tracker->entry(m_editor->entryId().toStdString());
    EarlierWork work(m_typed, entry ? entry->description : std::string(), mostRows);
    work.add(tracker->entries());
    show(std::move(work));
    askServer(m_typed);
}

void DescriptionSuggestions::show(std::optional<EarlierWork> work)
{
    const int before = count();
    beginResetModel();
    m_work = std::move(work);
    endResetModel();
    if (count() != before)
        Q_EMIT countChanged();
}

Task<> DescriptionSuggestions::askServer(std::string typed)
{
    const QPointer<DescriptionSuggestions> self(this);
    const auto answer = co_await m_app->account()->client().suggestDescriptions(
        m_app->tracker()->workspace().id, typed, static_cast<std::int64_t>(mostRows));
    // Another text may be typed by now, or another account be open.
    if (!self || !answer || !m_work || m_typed != typed)
        co_return;
    EarlierWork more = *m_work;
    more.add(*answer);
    const int first = count();
    const int last = static_cast<int>(more.found().size()) - 1;
    if (last < first)
        co_return;
    beginInsertRows({}, first, last);
    m_work = std::move(more);
    endInsertRows();
    Q_EMIT countChanged();
}

void DescriptionSuggestions::take(int row)
{
    if (row < 0 || row >= count())
        return;
    const TimeEntrySuggestion taken = m_work->found()[static_cast<std::size_t>(row)];
    close();
    m_editor->takeOver(taken);
}

int DescriptionSuggestions::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() || !m_work ? 0 : static_cast<int>(m_work->found().size());
}

QVariant DescriptionSuggestions::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= count())
        return {};
    const TimeEntrySuggestion &work = m_work->found()[static_cast<std::size_t>(index.row())];
    const Tracker *tracker = m_app->tracker();
    const ProjectResponse *project =
        work.projectId && tracker != nullptr ? tracker->catalog().project(*work.projectId) : nullptr;
    switch (role) {
    case descriptionRole:
        return QString::fromStdString(work.description);
    case projectRole:
        return project != nullptr ? QString::fromStdString(project->name) : QString();
    case colorRole:
        return project != nullptr ? QString::fromStdString(project->color) : QString();
    default:
        return {};
    }
}

QHash<int, QByteArray> DescriptionSuggestions::roleNames() const
{
    return {{descriptionRole, "description"}, {projectRole, "project"}, {colorRole, "projectColor"}};
}

} // namespace orvane
