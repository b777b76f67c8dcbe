// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/CatalogChange.h"

#include "Outbox/OutboxRules.h"
#include "Support/Require.h"
#include "Tracker/Tracker.h"

namespace orvane {

namespace {

using Ending = UndoableChange::Ending;
using Outcome = UndoableChange::Outcome;

Outcome failed(const CallError &error)
{
    return {classify(error) == FailureKind::transient ? Ending::away : Ending::refused, describe(error)};
}

/// The tasks of a project are things of their own.
ProjectResponse alone(ProjectResponse project)
{
    project.tasks.clear();
    return project;
}

template <class Item>
Item alone(Item item)
{
    return item;
}

const ProjectResponse *known(const Catalog &catalog, const ProjectResponse &item)
{
    return catalog.project(item.id);
}
const ClientResponse *known(const Catalog &catalog, const ClientResponse &item)
{
    return catalog.client(item.id);
}
const TaskResponse *known(const Catalog &catalog, const TaskResponse &item)
{
    return catalog.task(item.id);
}
const TagResponse *known(const Catalog &catalog, const TagResponse &item)
{
    return catalog.tag(item.id);
}

template <class Item>
CallResult<void> ended(const CallResult<Item> &result)
{
    return result ? CallResult<void>{} : failure(result.error());
}

/// An archived one is taken out first and put back last, since it cannot be changed in there.
Task<CallResult<void>> written(CatalogEditor editor, ProjectResponse from, ProjectResponse to)
{
    CallResult<void> result;
    if (from.isArchived)
        result = ended(co_await editor.restoreProject(to.id));
    if (result && ProjectFields::of(from) != ProjectFields::of(to))
        result = ended(co_await editor.updateProject(to.id, ProjectFields::of(to)));
    if (result && to.isArchived)
        result = ended(co_await editor.archiveProject(to.id));
    co_return result;
}

Task<CallResult<void>> written(CatalogEditor editor, ClientResponse from, ClientResponse to)
{
    CallResult<void> result;
    if (from.isArchived)
        result = ended(co_await editor.restoreClient(to.id));
    if (result && from.name != to.name)
        result = ended(co_await editor.renameClient(to.id, to.name));
    if (result && to.isArchived)
        result = ended(co_await editor.archiveClient(to.id));
    co_return result;
}

Task<CallResult<void>> written(CatalogEditor editor, TaskResponse, TaskResponse to)
{
    co_return ended(co_await editor.updateTask(std::move(to)));
}

Task<CallResult<void>> written(CatalogEditor editor, TagResponse, TagResponse to)
{
    co_return ended(co_await editor.renameTag(to.id, to.name));
}

template <class Item>
Task<Outcome> replaced(CatalogEditor editor, QPointer<Tracker> tracker, Item expected, Item wanted)
{
    if (!tracker)
        co_return Outcome{Ending::away, "Nobody is signed in."};
    if (const auto fresh = co_await tracker->reloadCatalog(); !fresh)
        co_return failed(fresh.error());
    const Item *now = tracker ? known(tracker->catalog(), expected) : nullptr;
    if (now == nullptr || alone(*now) != expected)
        co_return Outcome{Ending::changedSince,
                          "That cannot be undone: “" + expected.name + "” was changed since then."};
    const auto result = co_await written(std::move(editor), expected, wanted);
    co_return result ? Outcome{} : failed(result.error());
}

template <class Item>
std::string verbFor(const Item &before, const Item &after)
{
    if constexpr (requires { after.isArchived; }) {
        if (before.isArchived != after.isArchived)
            return after.isArchived ? "Archived " : "Restored ";
    }
    if constexpr (requires { after.isActive; }) {
        if (before.isActive != after.isActive)
            return after.isActive ? "Restored " : "Closed ";
    }
    return before.name != after.name ? "Renamed " : "Changed ";
}

template <class Item>
class CatalogChange final : public UndoableChange {
public:
    CatalogChange(CatalogEditor editor, Tracker &tracker, Item before, Item after)
        : m_editor(std::move(editor))
        , m_tracker(&tracker)
        , m_before(alone(std::move(before)))
        , m_after(alone(std::move(after)))
    {
        ORVANE_REQUIRE(m_before.id == m_after.id, "a change of two things");
    }

    std::string sentence() const override
    {
        const std::string what = verbFor(m_before, m_after) + "“" + m_before.name + "”";
        return m_before.name == m_after.name ? what : what + " to “" + m_after.name + "”";
    }
    Task<Outcome> undo() override { return replaced(m_editor, m_tracker, m_after, m_before); }
    Task<Outcome> redo() override { return replaced(m_editor, m_tracker, m_before, m_after); }

private:
    CatalogEditor m_editor;
    QPointer<Tracker> m_tracker;
    Item m_before;
    Item m_after;
};

template <class Item>
std::shared_ptr<UndoableChange> change(CatalogEditor editor, Tracker &tracker, Item before, Item after)
{
    return std::make_shared<CatalogChange<Item>>(std::move(editor), tracker, std::move(before),
                                                 std::move(after));
}

} // namespace

std::shared_ptr<UndoableChange> undoableChange(CatalogEditor editor, Tracker &tracker, ProjectResponse before,
                                               ProjectResponse after)
{
    return change(std::move(editor), tracker, std::move(before), std::move(after));
}

std::shared_ptr<UndoableChange> undoableChange(CatalogEditor editor, Tracker &tracker, ClientResponse before,
                                               ClientResponse after)
{
    return change(std::move(editor), tracker, std::move(before), std::move(after));
}

std::shared_ptr<UndoableChange> undoableChange(CatalogEditor editor, Tracker &tracker, TaskResponse before,
                                               TaskResponse after)
{
    return change(std::move(editor), tracker, std::move(before), std::move(after));
}

std::shared_ptr<UndoableChange> undoableChange(CatalogEditor editor, Tracker &tracker, TagResponse before,
                                               TagResponse after)
{
    return change(std::move(editor), tracker, std::move(before), std::move(after));
}

} // namespace orvane
