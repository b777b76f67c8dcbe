// SPDX-License-Identifier: GPL-3.0-or-later
#include "Outbox/EntryMerge.h"

#include "Catalog/EntryConversions.h"

#include <algorithm>

namespace orvane {

namespace {

/// A request whose parts say only what they say for themselves, so that two of them compare.
EntryRequest plain(EntryRequest request)
{
    std::ranges::sort(request.details.tagIds);
    request.describeParts = request.describeParts && !request.details.shares.empty();
    if (!request.describeParts) {
        for (SplitPart &part : request.details.shares)
            part.description.clear();
    }
    return request;
}

EntryRequest plainRequest(const TimeEntryResponse &entry)
{
    return plain(entryRequest(entry));
}

struct Project {
    std::optional<std::string> project;
    std::optional<std::string> task;
    bool operator==(const Project &) const = default;
};

struct Split {
    std::vector<SplitPart> shares;
    bool describeParts = false;
    bool operator==(const Split &) const = default;
};

/// Three states of an entry on their way to one.
class Merge {
public:
    Merge(const EntryRequest &base, const EntryRequest &mine, const EntryRequest &head,
          const EntryRequest &seen)
        : m_base(base), m_mine(mine), m_head(head), m_seen(seen), m_result(head)
    {
        field([](auto &request) -> auto & { return request.details.description; });
        field([](auto &request) -> auto & { return request.details.tagIds; });
        field([](auto &request) -> auto & { return request.details.isBillable; });
        field([](auto &request) -> auto & { return request.start; });

        group<Project>(
            [](const EntryRequest &request) {
                return Project{request.details.projectId, request.details.taskId};
            },
            [](EntryRequest &request, Project project) {
                request.details.projectId = std::move(project.project);
                request.details.taskId = std::move(project.task);
            });
        group<Split>(
            [](const EntryRequest &request) { return Split{request.details.shares, request.describeParts}; },
            [](EntryRequest &request, Split split) {
                request.details.shares = std::move(split.shares);
                request.describeParts = split.describeParts;
            });
        mergeStop();
        m_isPossible = !m_result.stop || *m_result.stop >= m_result.start;
    }

    bool isContested() const { return m_isContested || !m_isPossible; }
    /// Where the two sides' times together make no entry, both are mine; the rest stays as it was put
    /// together.
    EntryRequest result() const
    {
        EntryRequest result = m_result;
        if (!m_isPossible) {
            result.start = m_mine.start;
            result.stop = m_mine.stop;
        }
        return result;
    }

private:
    /// An entry that runs contradicts no end that is given to it: it was seen as ended when another timer's
    /// start
    /// was shown to end it.
    void mergeStop()
    {
        if (m_mine.stop == m_base.stop)
            return;
        m_isContested =
            m_isContested || (m_head.stop && isNews(m_head.stop, m_base.stop, m_mine.stop, m_seen.stop));
        m_result.stop = m_mine.stop;
    }

    template <class Value>
    static bool isNews(const Value &head, const Value &base, const Value &mine, const Value &seen)
    {
        return head != base && head != mine && head != seen;
    }

    template <class Get>
    void field(Get get)
    {
        if (get(m_mine) == get(m_base))
            return;
        m_isContested = m_isContested || isNews(get(m_head), get(m_base), get(m_mine), get(m_seen));
        get(m_result) = get(m_mine);
    }

    template <class Value, class Get, class Set>
    void group(Get get, Set set)
    {
        const Value base = get(m_base);
        const Value mine = get(m_mine);
        const Value head = get(m_head);
        if (mine == base)
            return;
        m_isContested = m_isContested || isNews(head, base, mine, get(m_seen));
        set(m_result, mine);
    }

    const EntryRequest &m_base;
    const EntryRequest &m_mine;
    const EntryRequest &m_head;
    const EntryRequest &m_seen;
    EntryRequest m_result;
    bool m_isContested = false;
    bool m_isPossible = true;
};

} // namespace

bool saysTheSame(TimeEntryResponse one, TimeEntryResponse other)
{
    std::ranges::sort(one.tagIds);
    std::ranges::sort(other.tagIds);
    one.version = other.version;
    return one == other;
}

Rebased putOnTop(const EntryChange &change, const TimeEntryResponse &base, const TimeEntryResponse &head,
                 const std::optional<TimeEntryResponse> &seen)
{
    if (const auto *update = std::get_if<EntryChange::Update>(&change.action)) {
        const EntryRequest before = plainRequest(base);
        const EntryRequest mine = plain(update->request);
        const EntryRequest now = plainRequest(head);
        const EntryRequest known = plainRequest(seen.value_or(base));
        const Merge merge(before, mine, now, known);
        EntryChange::Update merged = *update;
        merged.request = merge.result();
        return {EntryChange{std::move(merged)}, merge.isContested()};
    }
    if (std::holds_alternative<EntryChange::Delete>(change.action)) {
        TimeEntryResponse now = head;
        if (!now.stop)
            now.stop = base.stop; // as with an end that is edited
        return {change, !saysTheSame(base, now) && !(seen && saysTheSame(*seen, head))};
    }
    return {change, false};
}

EntryChange madeAnew(const EntryChange &change, const std::optional<TimeEntryResponse> &base,
                     const TimeEntryResponse &current)
{
    const auto *stop = std::get_if<EntryChange::Stop>(&change.action);
    if (stop != nullptr && current.stop) {
        // The server lets nobody stop an entry twice; its end can be changed, though.
        EntryRequest request = entryRequest(current);
        request.stop = stop->at;
        return {EntryChange::Update{std::move(request), stop->id, stop->workspaceId, current.version}};
    }
    const bool isUpdate = std::holds_alternative<EntryChange::Update>(change.action);
    return (isUpdate && base ? putOnTop(change, *base, current).change : change).withVersion(current.version);
}

} // namespace orvane
