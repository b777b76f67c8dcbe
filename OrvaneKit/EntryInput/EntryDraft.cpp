// SPDX-License-Identifier: GPL-3.0-or-later
#include "EntryInput/EntryDraft.h"

#include "Catalog/EntryConversions.h"

#include <algorithm>

namespace orvane {

EntryDraft EntryDraft::of(const TimeEntryResponse &entry)
{
    EntryRequest request = entryRequest(entry);
    EntryDraft draft;
    draft.m_details = std::move(request.details);
    draft.m_describeParts = request.describeParts;
    draft.m_before = EntryTimes{request.start, request.stop};
    return draft;
}

EntryDraft EntryDraft::continuing(const TimeEntryResponse &entry)
{
    EntryDraft draft = of(entry);
    draft.m_before.reset();
    return draft;
}

void EntryDraft::take(const EntrySentence::Reading &reading, const Catalog &catalog)
{
    if (!reading.description.empty())
        setDescription(reading.description);
    if (reading.projectID) {
        setProject(reading.projectID, catalog);
        m_details.taskId = reading.taskID;
    }
    if (!reading.tagIDs.empty())
        setTags(reading.tagIDs);
    // Not a setting like the others: "$" does not hold against a project that is chosen singly.
    if (reading.isBillable && !m_isBillableSet)
        m_details.isBillable = true;
    if (reading.time) {
        m_phrase = reading.time;
        m_day = reading.day;
    }
}

void EntryDraft::setDescription(std::string description)
{
    m_details.description = std::move(description);
}

void EntryDraft::setProject(std::optional<std::string> projectId, const Catalog &catalog)
{
    if (m_details.projectId != projectId)
        m_details.taskId.reset();
    m_details.projectId = std::move(projectId);
    setShares({}, false);
    const ProjectResponse *project = m_details.projectId ? catalog.project(*m_details.projectId) : nullptr;
    if (project && !m_isBillableSet)
        m_details.isBillable = project->isBillable;
}

void EntryDraft::setTask(std::optional<std::string> taskId, const Catalog &catalog)
{
    if (!taskId) {
        m_details.taskId.reset();
        return;
    }
    const TaskResponse *task = catalog.task(*taskId);
    if (task && m_details.projectId != task->projectId)
        setProject(task->projectId, catalog);
    m_details.taskId = std::move(taskId);
    setShares({}, false);
}

void EntryDraft::setTags(std::vector<std::string> tagIds)
{
    m_details.tagIds.clear();
    for (std::string &id : tagIds) {
        if (std::ranges::find(m_details.tagIds, id) == m_details.tagIds.end())
            m_details.tagIds.push_back(std::move(id));
    }
}

void EntryDraft::setBillable(bool isBillable)
{
    m_details.isBillable = isBillable;
    m_isBillableSet = true;
}

void EntryDraft::setShares(std::vector<SplitPart> shares, bool describeParts)
{
    m_details.shares = std::move(shares);
    m_describeParts = describeParts && !m_details.shares.empty();
}

Result<std::optional<EntryTimes>, EntryTimesProblem> EntryDraft::times(const UserTime &time,
                                                                       Instant now) const
{
    if (m_before) {
        const EntryTimes said = m_phrase ? m_before->changed(*m_phrase, m_day, time, now) : *m_before;
        return said.changed(m_start, m_stop, time, now);
    }
    std::optional<TypedMoment> start = m_start;
    std::optional<TypedMoment> stop = m_stop;
    if (const auto span = m_phrase ? EntrySentence::resolve(*m_phrase, m_day, now, time) : std::nullopt) {
        if (!start)
            start = TypedMoment{.instant = span->start};
        if (!stop && span->stop)
            stop = TypedMoment{.instant = *span->stop};
    }
    if (start && stop)
        return EntryTimes::made(*start, *stop, time, now);
    if (stop)
        return failure(EntryTimesProblem::endWithoutStart);
    if (!start)
        return std::optional<EntryTimes>();
    return EntryTimes{EntryTimes::timerStart(*start, time, now), std::nullopt};
}

Result<std::optional<EntryRequest>, EntryTimesProblem> EntryDraft::request(const UserTime &time,
                                                                           Instant now) const
{
    const auto times = this->times(time, now);
    if (!times)
        return failure(times.error());
    if (!*times)
        return std::optional<EntryRequest>();
    return at(**times);
}

} // namespace orvane
