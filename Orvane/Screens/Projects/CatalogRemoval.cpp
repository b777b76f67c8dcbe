// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/Projects/CatalogRemoval.h"

#include "AppModel/AppModel.h"
#include "Time/Durations.h"
#include "Tracker/CatalogEditor.h"

#include <algorithm>

namespace orvane {

namespace {

CatalogItem::Kind itemKind(CatalogRemoval::Kind kind)
{
    switch (kind) {
    case CatalogRemoval::TaskOfProject:
        return CatalogItem::Kind::task;
    case CatalogRemoval::Tag:
        return CatalogItem::Kind::tag;
    default:
        return CatalogItem::Kind::project;
    }
}

template <class Item>
QString nameOf(const Item *item)
{
    return item != nullptr ? QString::fromStdString(item->name) : QString();
}

} // namespace

void CatalogRemoval::ask(Kind kind, const QString &id)
{
    Tracker *tracker = m_app->tracker();
    if (tracker == nullptr)
        return;
    const Catalog &catalog = tracker->catalog();
    m_kind = kind;
    m_id = id.toStdString();
    m_isKnown = false;
    m_problem.clear();
    m_effect = tr("Looking what is on it…");
    const TaskResponse *task = kind == TaskOfProject ? catalog.task(m_id) : nullptr;
    m_projectId = task != nullptr ? task->projectId : std::string();
    m_name = kind == Project         ? nameOf(catalog.project(m_id))
             : kind == TaskOfProject ? nameOf(task)
             : kind == Tag           ? nameOf(catalog.tag(m_id))
                                     : nameOf(catalog.client(m_id));
    if (kind == Client) {
        const auto count = std::ranges::count_if(
            catalog.projects(), [this](const ProjectResponse &project) { return project.clientId == m_id; });
        m_effect = count == 0   ? tr("No project has this client.")
                   : count == 1 ? tr("1 project goes on without a client.")
                                : tr("%1 projects go on without a client.").arg(count);
        m_isKnown = true;
    } else {
        findUse(m_id);
    }
    Q_EMIT changed();
}

Task<> CatalogRemoval::findUse(std::string id)
{
    const QPointer<CatalogRemoval> self(this);
    CatalogEditor editor(m_app->account()->client(), *m_app->tracker());
    const auto use = co_await editor.useOf({itemKind(m_kind), id}, [] {});
    if (!self || m_id != id)
        co_return;
    if (use) {
        m_isKnown = true;
        tellUse(*use);
    } else {
        m_effect.clear();
        m_problem = QString::fromStdString(describe(use.error()));
    }
    Q_EMIT changed();
}

QString CatalogRemoval::loss() const
{
    return m_kind == Project ? tr("lose project and task")
           : m_kind == Tag   ? tr("lose the tag")
                             : tr("lose the task");
}

void CatalogRemoval::tellUse(const CatalogUse &use)
{
    const QString length = QString::fromStdString(Durations::shortLabel(static_cast<double>(use.seconds)));
    m_effect =
        use.entries == 0 ? tr("None of your entries is on it. It cannot be undone.")
        : use.entries == 1
            ? tr("1 of your entries, %1: its time will %2. It cannot be undone.").arg(length, loss())
            : tr("%1 of your entries, %2, %3. It cannot be undone.").arg(use.entries).arg(length, loss());
}

void CatalogRemoval::keep()
{
    if (m_isBusy)
        return;
    m_id.clear();
    m_problem.clear();
    Q_EMIT changed();
}

void CatalogRemoval::remove()
{
    if (m_id.empty() || !m_isKnown || m_isBusy || m_app->tracker() == nullptr)
        return;
    m_isBusy = true;
    Q_EMIT changed();
    doRemove(m_id);
}

Task<> CatalogRemoval::doRemove(std::string id)
{
    const QPointer<CatalogRemoval> self(this);
    CatalogEditor editor(m_app->account()->client(), *m_app->tracker());
    const QString name = m_name;
    const auto gone = m_kind == Project         ? co_await editor.deleteProject(id)
                      : m_kind == TaskOfProject ? co_await editor.deleteTask(m_projectId, id)
                      : m_kind == Tag           ? co_await editor.deleteTag(id)
                                                : co_await editor.deleteClient(id);
    if (!self)
        co_return;
    m_isBusy = false;
    if (gone) {
        m_id.clear();
        m_problem.clear();
        m_app->notices()->tell(tr("Deleted “%1”").arg(name));
    } else {
        m_problem = QString::fromStdString(describe(gone.error()));
    }
    Q_EMIT changed();
}

} // namespace orvane
