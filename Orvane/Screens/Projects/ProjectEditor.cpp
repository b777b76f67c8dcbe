// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Projects/ProjectEditor.h"

#include "AppModel/AppModel.h"
#include "Catalog/NameOrder.h"
#include "Catalog/TypedAmounts.h"
#include "Screens/Projects/ProjectTexts.h"
#include "Time/AppClock.h"
#include "Tracker/CatalogChange.h"

#include <algorithm>

namespace orvane {

ProjectEditor::ProjectEditor(AppModel &app) : m_app(&app), m_tasks(nullptr)
{
    connect(m_app, &AppModel::trackerChanged, this, &ProjectEditor::follow);
    follow();
}

void ProjectEditor::follow()
{
    if (m_tracker)
        m_tracker->catalog().disconnect(this);
    // What is typed stays with what it is about.
    close();
    m_tracker = m_app->tracker();
    if (m_tracker)
        connect(&m_tracker->catalog(), &Catalog::changed, this, &ProjectEditor::followCatalog);
    Q_EMIT clientsChanged();
}

void ProjectEditor::followCatalog()
{
    Q_EMIT clientsChanged();
    if (m_id.empty())
        return;
    const ProjectResponse *project = m_tracker->catalog().project(m_id);
    if (project == nullptr) {
        close();
        return;
    }
    m_isArchived = project->isArchived;
    Q_EMIT edited();
    update(CatalogWeek::of(*m_tracker, AppClock::now()));
}

void ProjectEditor::update(const CatalogWeek &week)
{
    const ProjectResponse *project =
        m_tracker && !m_id.empty() ? m_tracker->catalog().project(m_id) : nullptr;
    if (project != nullptr)
        m_tasks.update(*project, week);
    else
        m_tasks.clear();
}

// Choices

QStringList ProjectEditor::colors()
{
    return {QStringLiteral("#3B77D0"), QStringLiteral("#B75C14"), QStringLiteral("#8362C5"),
            QStringLiteral("#658A2A"), QStringLiteral("#BE4C6F"), QStringLiteral("#9D7400"),
            QStringLiteral("#0084B3"), QStringLiteral("#A754A5"), QStringLiteral("#BD5344"),
            QStringLiteral("#687C88")};
}

std::vector<std::pair<std::string, QString>> ProjectEditor::openClients() const
{
    std::vector<std::pair<std::string, QString>> found;
    if (!m_tracker)
        return found;
    for (const ClientResponse &client : m_tracker->catalog().clients()) {
        if (!client.isArchived)
            found.emplace_back(client.id, QString::fromStdString(client.name));
    }
    std::ranges::sort(found, {},
                      [](const auto &client) { return nameOrderKey(client.second.toStdString()); });
    return found;
}

QStringList ProjectEditor::clients() const
{
    QStringList names;
    for (const auto &[id, name] : openClients())
        names << name;
    return names;
}

void ProjectEditor::chooseClient(int index)
{
    const auto known = openClients();
    if (index < 0)
        m_clientId.reset();
    else if (index < static_cast<int>(known.size()))
        m_clientId = known[static_cast<std::size_t>(index)].first;
    Q_EMIT edited();
}

QString ProjectEditor::client() const
{
    const ClientResponse *client =
        m_tracker && m_clientId ? m_tracker->catalog().client(*m_clientId) : nullptr;
    return client != nullptr ? QString::fromStdString(client->name) : QString();
}

QString ProjectEditor::currency() const
{
    return m_tracker && m_tracker->settings() ? currencySign(m_tracker->settings()->currency) : QString();
}

// From opening to saving

void ProjectEditor::show(const ProjectFields &fields)
{
    m_name = QString::fromStdString(fields.name);
    m_clientId = fields.clientId;
    m_color = QString::fromStdString(fields.color);
    m_rate = fields.hourlyRate ? QString::fromStdString(rateText(*fields.hourlyRate)) : QString();
    m_estimate = fields.estimateSeconds ? estimateText(*fields.estimateSeconds) : QString();
    m_isBillable = fields.isBillable;
    m_isPrivate = fields.isPrivate;
    m_newTask.clear();
    setProblem(Field::None, {});
    Q_EMIT edited();
}

void ProjectEditor::open(const QString &id)
{
    const ProjectResponse *project = m_tracker ? m_tracker->catalog().project(id.toStdString()) : nullptr;
    if (project == nullptr)
        return;
    m_id = project->id;
    m_isNew = false;
    m_isArchived = project->isArchived;
    show(ProjectFields::of(*project));
    update(CatalogWeek::of(*m_tracker, AppClock::now()));
    Q_EMIT opened();
}

void ProjectEditor::openNew()
{
    if (!m_tracker || m_isNew)
        return;
    m_id.clear();
    m_isNew = true;
    m_isArchived = false;
    const auto count = static_cast<qsizetype>(m_tracker->catalog().projects().size());
    ProjectFields fields;
    fields.color = colors()[count % colors().size()].toStdString();
    show(fields);
    m_tasks.clear();
    Q_EMIT opened();
}

void ProjectEditor::cancel()
{
    if (!m_isBusy)
        close();
}

void ProjectEditor::close()
{
    if (!isOpen())
        return;
    m_id.clear();
    m_isNew = false;
    m_tasks.clear();
    setProblem(Field::None, {});
    Q_EMIT opened();
}

void ProjectEditor::setProblem(Field field, const QString &problem)
{
    m_wrongField = field;
    m_problem = problem;
    Q_EMIT problemChanged();
}

void ProjectEditor::setBusy(bool isBusy)
{
    m_isBusy = isBusy;
    Q_EMIT busyChanged();
}

/// None, and the problem told, where a field cannot be read.
std::optional<ProjectFields> ProjectEditor::typed()
{
    ProjectFields fields{.name = m_name.trimmed().toStdString(),
                         .clientId = m_clientId,
                         .color = m_color.toStdString(),
                         .isPrivate = m_isPrivate,
                         .isBillable = m_isBillable,
                         .estimateSeconds = {},
                         .hourlyRate = {}};
    if (fields.name.empty()) {
        setProblem(Field::Name, tr("A project needs a name."));
        return {};
    }
    if (!m_rate.trimmed().isEmpty()) {
        fields.hourlyRate = parseTypedRate(m_rate.trimmed().toStdString());
        if (!fields.hourlyRate) {
            setProblem(Field::Rate, tr("A rate is an amount such as 80 or 12.50."));
            return {};
        }
    }
    if (!m_estimate.trimmed().isEmpty()) {
        fields.estimateSeconds = parseTypedEstimate(m_estimate.trimmed().toStdString());
        if (!fields.estimateSeconds) {
            setProblem(Field::Estimate, tr("An estimate is a length such as 120h or 1h 30m."));
            return {};
        }
    }
    return fields;
}

void ProjectEditor::save()
{
    if (!isOpen() || m_isBusy || !m_tracker)
        return;
    auto fields = typed();
    if (!fields)
        return;
    if (m_isNew) {
        doCreate(std::move(*fields));
        return;
    }
    const ProjectResponse *project = m_tracker->catalog().project(m_id);
    if (project == nullptr || ProjectFields::of(*project) == *fields)
        close();
    else
        doChange(
            m_id,
            [id = m_id, changed = std::move(*fields)](CatalogEditor &editor) {
                return editor.updateProject(id, changed);
            },
            false);
}

Task<> ProjectEditor::doCreate(ProjectFields fields)
{
    const QPointer<ProjectEditor> self(this);
    setBusy(true);
    CatalogEditor editor(m_app->account()->client(), *m_tracker);
    const auto made = co_await editor.createProject(std::move(fields));
    if (!self)
        co_return;
    setBusy(false);
    if (!made)
        setProblem(Field::Name, QString::fromStdString(describe(made.error())));
    else
        close();
}

Task<> ProjectEditor::doChange(std::string id, Change change, bool isTold)
{
    const QPointer<ProjectEditor> self(this);
    const QPointer<Tracker> tracker = m_tracker;
    const ProjectResponse before = *m_tracker->catalog().project(id);
    setBusy(true);
    CatalogEditor editor(m_app->account()->client(), *m_tracker);
    const auto after = co_await change(editor);
    if (!self)
        co_return;
    setBusy(false);
    if (!after) {
        setProblem(Field::None, QString::fromStdString(describe(after.error())));
        co_return;
    }
    if (m_id == id)
        close();
    if (tracker)
        m_app->noteChange(undoableChange(editor, *tracker, before, *after), isTold);
}

// What acts at once

void ProjectEditor::archive()
{
    if (!m_id.empty() && !m_isBusy)
        doChange(m_id, [id = m_id](CatalogEditor &editor) { return editor.archiveProject(id); }, true);
}

void ProjectEditor::restore()
{
    if (!m_id.empty() && !m_isBusy)
        doChange(m_id, [id = m_id](CatalogEditor &editor) { return editor.restoreProject(id); }, true);
}

void ProjectEditor::addTask()
{
    const QString name = m_newTask.trimmed();
    if (!m_id.empty() && !m_isBusy && !name.isEmpty())
        doAddTask(m_id, name.toStdString());
}

Task<> ProjectEditor::doAddTask(std::string id, std::string name)
{
    const QPointer<ProjectEditor> self(this);
    setBusy(true);
    CatalogEditor editor(m_app->account()->client(), *m_tracker);
    const auto made = co_await editor.createTask(id, std::move(name));
    if (!self)
        co_return;
    setBusy(false);
    if (!made) {
        setProblem(Field::Task, QString::fromStdString(describe(made.error())));
    } else if (m_id == id) {
        m_newTask.clear();
        setProblem(Field::None, {});
        Q_EMIT edited();
    }
}

void ProjectEditor::setTaskDone(const QString &id, bool isDone)
{
    const TaskResponse *task = m_tracker ? m_tracker->catalog().task(id.toStdString()) : nullptr;
    if (task != nullptr && task->isActive == isDone)
        doUpdateTask(task->id, task->name, !isDone);
}

void ProjectEditor::renameTask(const QString &id, const QString &name)
{
    const TaskResponse *task = m_tracker ? m_tracker->catalog().task(id.toStdString()) : nullptr;
    const std::string wanted = name.trimmed().toStdString();
    if (task != nullptr && !wanted.empty() && task->name != wanted)
        doUpdateTask(task->id, wanted, task->isActive);
}

Task<> ProjectEditor::doUpdateTask(std::string id, std::string name, bool isActive)
{
    const QPointer<ProjectEditor> self(this);
    const QPointer<Tracker> tracker = m_tracker;
    const TaskResponse before = *m_tracker->catalog().task(id);
    TaskResponse wanted = before;
    wanted.name = std::move(name);
    wanted.isActive = isActive;
    CatalogEditor editor(m_app->account()->client(), *m_tracker);
    const auto after = co_await editor.updateTask(std::move(wanted));
    if (!self)
        co_return;
    if (!after)
        setProblem(Field::Task, QString::fromStdString(describe(after.error())));
    else if (tracker)
        m_app->noteChange(undoableChange(editor, *tracker, before, *after), false);
}

} // namespace orvane
