// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/EntryHistory.h"

#include "LocalStore/StoreSteps.h"
#include "OrvaneAPI/SchemaFields.h"
#include "Support/JsonImpl.h"

#include <algorithm>

ORVANE_JSON(orvane::HistoryDocument)

namespace orvane {

namespace {

void rename(std::optional<TimeEntryResponse> &entry, const std::string &from, const std::string &to)
{
    if (entry && entry->id == from)
        entry->id = to;
}

/// Changes the document in one transaction.
template <class Change>
Task<StoreStatus> changeHistory(std::shared_ptr<LocalStore> store, std::string key, Change change)
{
    co_return co_await store->transact(
        [key = std::move(key), change = std::move(change)](Connection &connection) -> StoreStatus {
            StoreSteps steps(connection);
            std::optional<HistoryDocument> document;
            steps.read(key, document);
            HistoryDocument history = document.value_or(HistoryDocument{});
            change(history.steps);
            return steps.write(key, history).status();
        });
}

/// The last step that is like this; the end when there is none.
std::vector<EntryStep>::iterator lastLike(std::vector<EntryStep> &steps, const EntryStep &step)
{
    const auto found = std::ranges::find(steps.rbegin(), steps.rend(), step);
    return found == steps.rend() ? steps.end() : std::prev(found.base());
}

} // namespace

void follow(EntryStep &step, const RenamedEntries &renamed)
{
    for (EntryTurn &turn : step.turns) {
        for (const auto &[from, to] : renamed) {
            rename(turn.before, from, to);
            rename(turn.after, from, to);
        }
    }
}

EntryHistory::EntryHistory(std::shared_ptr<LocalStore> store, std::string workspaceId)
    : m_store(std::move(store)), m_key(HistoryDocument::key(workspaceId))
{
}

Task<StoreStatus> EntryHistory::add(EntryStep step, RenamedEntries renamed)
{
    if (step.turns.empty())
        co_return StoreStatus{};
    co_return co_await changeHistory(
        m_store, m_key,
        [step = std::move(step), renamed = std::move(renamed)](std::vector<EntryStep> &steps) {
            for (EntryStep &earlier : steps)
                follow(earlier, renamed);
            steps.push_back(step);
            if (steps.size() > keptSteps)
                steps.erase(steps.begin(), steps.end() - keptSteps);
        });
}

Task<std::optional<EntryStep>> EntryHistory::last() const
{
    const auto document = co_await m_store->load<HistoryDocument>(m_key);
    if (!document || document->steps.empty())
        co_return std::nullopt;
    co_return document->steps.back();
}

Task<StoreStatus> EntryHistory::forget(EntryStep step, RenamedEntries renamed)
{
    co_return co_await changeHistory(
        m_store, m_key,
        [step = std::move(step), renamed = std::move(renamed)](std::vector<EntryStep> &steps) {
            if (const auto found = lastLike(steps, step); found != steps.end())
                steps.erase(found);
            for (EntryStep &other : steps)
                follow(other, renamed);
        });
}

Task<StoreStatus> EntryHistory::replace(EntryStep step, EntryStep with)
{
    co_return co_await changeHistory(
        m_store, m_key, [step = std::move(step), with = std::move(with)](std::vector<EntryStep> &steps) {
            const auto found = lastLike(steps, step);
            if (found != steps.end() && with.turns.empty())
                steps.erase(found);
            else if (found != steps.end())
                *found = with;
        });
}

} // namespace orvane
