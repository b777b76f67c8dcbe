// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Projects/NameList.h"

#include "AppModel/AppModel.h"
#include "Catalog/NameOrder.h"
#include "Screens/Projects/ProjectTexts.h"
#include "Tracker/CatalogChange.h"

#include <map>

namespace orvane {

NameList::NameList(AppModel &app, Things things) : CatalogRows(nullptr), m_app(&app), m_things(things) {}

bool NameList::mayEdit() const
{
    const Tracker *tracker = m_app->tracker();
    return tracker != nullptr && (m_things == Things::tags ? tracker->rules().mayCreateTags()
                                                           : tracker->rules().mayCreateProjects());
}

// The rows

std::vector<NameRow> NameList::clientRows(const QString &query) const
{
    const Catalog &catalog = m_app->tracker()->catalog();
    std::map<std::string, int> counts;
    for (const ProjectResponse &project : catalog.projects()) {
        if (project.clientId && !project.isArchived)
            ++counts[*project.clientId];
    }
    std::vector<NameRow> made;
    for (const ClientResponse &client : catalog.clients()) {
        if (!nameHolds(client.name, query))
            continue;
        const int count = counts[client.id];
        const QString projects = count == 0   ? tr("No projects")
                                 : count == 1 ? tr("1 project")
                                              : tr("%1 projects").arg(count);
        made.push_back({client.id, QString::fromStdString(client.name),
                        client.isArchived ? tr("Archived") : projects, client.isArchived});
    }
    return made;
}

std::vector<NameRow> NameList::tagRows(const QString &query) const
{
    std::vector<NameRow> made;
    for (const TagResponse &tag : m_app->tracker()->catalog().tags()) {
        if (nameHolds(tag.name, query))
            made.push_back({tag.id, QString::fromStdString(tag.name), {}, false});
    }
    return made;
}

void NameList::update(const QString &query)
{
    std::vector<NameRow> made;
    if (m_app->tracker() != nullptr)
        made = m_things == Things::tags ? tagRows(query) : clientRows(query);
    std::ranges::sort(made, {}, [](const NameRow &row) {
        return std::tuple(row.isArchived, nameOrderKey(row.name.toStdString()), row.id);
    });
    show(std::move(made));
    Q_EMIT countChanged();
}

QHash<int, QByteArray> NameList::roleNames() const
{
    return {
        {itemIdRole, "itemId"}, {nameRole, "name"}, {detailRole, "detail"}, {isArchivedRole, "isArchived"}};
}

QVariant NameList::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const NameRow &row = rows()[static_cast<std::size_t>(index.row())];
    switch (role) {
    case itemIdRole:
        return QString::fromStdString(row.id);
    case nameRole:
        return row.name;
    case detailRole:
        return row.detail;
    case isArchivedRole:
        return row.isArchived;
    default:
        return {};
    }
}

// Editing

void NameList::startEditing(std::string id, bool isNew, const QString &text)
{
    m_editedId = std::move(id);
    m_isNew = isNew;
    m_text = text;
    setProblem({});
    Q_EMIT textChanged();
    Q_EMIT editedChanged();
}

void NameList::edit(const QString &id)
{
    for (const NameRow &row : rows()) {
        if (row.id == id.toStdString() && mayEdit())
            startEditing(row.id, false, row.name);
    }
}

void NameList::beginNew()
{
    if (mayEdit())
        startEditing({}, true, {});
}

void NameList::cancel()
{
    startEditing({}, false, {});
}

void NameList::setProblem(const QString &problem)
{
    m_problem = problem;
    Q_EMIT problemChanged();
}

void NameList::save()
{
    const std::string name = m_text.trimmed().toStdString();
    if (m_app->tracker() == nullptr || (m_editedId.empty() && !m_isNew))
        return;
    if (name.empty())
        setProblem(m_things == Things::tags ? tr("A tag needs a name.") : tr("A client needs a name."));
    else if (m_isNew)
        doCreate(name);
    else
        doRename(m_editedId, name);
}

Task<> NameList::doCreate(std::string name)
{
    const QPointer<NameList> self(this);
    CatalogEditor editor(m_app->account()->client(), *m_app->tracker());
    QString problem;
    if (m_things == Things::tags) {
        if (const auto made = co_await editor.createTag(std::move(name)); !made)
            problem = QString::fromStdString(describe(made.error()));
    } else if (const auto made = co_await editor.createClient(std::move(name)); !made) {
        problem = QString::fromStdString(describe(made.error()));
    }
    if (!self)
        co_return;
    if (problem.isEmpty())
        cancel();
    else
        setProblem(problem);
}

template <class Response>
void NameList::finish(const QPointer<Tracker> &tracker, const Response &before, const Response &after,
                      bool isWorthTelling)
{
    if (m_editedId == after.id)
        cancel();
    if (!tracker || before == after)
        return;
    m_app->noteChange(
        undoableChange(CatalogEditor(m_app->account()->client(), *tracker), *tracker, before, after),
        isWorthTelling);
}

Task<> NameList::doRename(std::string id, std::string name)
{
    const QPointer<NameList> self(this);
    const QPointer<Tracker> tracker = m_app->tracker();
    CatalogEditor editor(m_app->account()->client(), *tracker);
    std::optional<CallError> error;
    if (m_things == Things::tags) {
        const TagResponse before = *tracker->catalog().tag(id);
        const auto after = co_await editor.renameTag(id, std::move(name));
        if (self && after)
            finish(tracker, before, *after, false);
        else if (!after)
            error = after.error();
    } else {
        const ClientResponse before = *tracker->catalog().client(id);
        const auto after = co_await editor.renameClient(id, std::move(name));
        if (self && after)
            finish(tracker, before, *after, false);
        else if (!after)
            error = after.error();
    }
    if (self && error)
        setProblem(QString::fromStdString(describe(*error)));
}

void NameList::setArchived(const QString &id, bool isArchived)
{
    if (m_things == Things::clients && m_app->tracker() != nullptr &&
        m_app->tracker()->catalog().client(id.toStdString()) != nullptr)
        doArchive(id.toStdString(), isArchived);
}

Task<> NameList::doArchive(std::string id, bool isArchived)
{
    const QPointer<NameList> self(this);
    const QPointer<Tracker> tracker = m_app->tracker();
    const ClientResponse before = *tracker->catalog().client(id);
    CatalogEditor editor(m_app->account()->client(), *tracker);
    const auto after = isArchived ? co_await editor.archiveClient(id) : co_await editor.restoreClient(id);
    if (!self)
        co_return;
    if (after)
        finish(tracker, before, *after, true);
    else
        m_app->notices()->tellFailure(QString::fromStdString(describe(after.error())));
}

} // namespace orvane
