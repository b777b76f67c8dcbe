// SPDX-License-Identifier: GPL-3.0-or-later
#include "Entries/EntryChecks.h"

#include "Http/Problems.h"
#include "Names/NameText.h"
#include "Projects/ProjectRecords.h"
#include "Projects/TaskRecords.h"
#include "Requests/Call.h"
#include "Tags/TagRecords.h"

#include <algorithm>

namespace orvane::server {

namespace {

/// Plans are made ahead, but not that far: such a start is a slip of the year.
constexpr std::chrono::days furthestStart{5 * 366};

class EntryCheck {
public:
    EntryCheck(Call &call, const WorkspaceAccess &workspace, const EntryRecord &record)
        : m_call(call), m_workspace(workspace), m_record(record), m_entry(record.entry)
    {
    }

    FieldErrors run()
    {
        checkTimes();
        checkTexts();
        checkReferences();
        checkShares();
        if (m_entry.stop)
            checkRequired();
        return std::move(m_faults);
    }

private:
    void refuse(const std::string &field, std::string sentence)
    {
        m_faults[field].push_back(std::move(sentence));
    }

    void checkTimes()
    {
        if (m_entry.stop && *m_entry.stop < m_entry.start)
            refuse("stop", "The end must not lie before the start.");
        if (m_entry.start > m_call.now + furthestStart)
            refuse("start", "The start lies too far in the future.");
    }

    void checkTexts()
    {
        if (hasControlCharacter(m_entry.description))
            refuse("description", "The description holds characters that cannot be shown.");
        for (std::size_t i = 0; i < m_entry.shares.size(); ++i) {
            if (hasControlCharacter(m_entry.shares[i].description))
                refuse(shareField(i, "description"),
                       "The description holds characters that cannot be shown.");
        }
    }

    static std::string shareField(std::size_t index, const char *member)
    {
        return "shares[" + std::to_string(index) + "]." + member;
    }

    void checkReferences()
    {
        checkProject(m_entry.projectId, m_entry.taskId, "projectId", "taskId");
        for (const std::string &tagId : m_entry.tagIds) {
            if (!TagRecords(m_call.database).find(m_entry.workspaceId, tagId)) {
                refuse("tagIds", "A tag is not there any more.");
                break;
            }
        }
    }

    void checkProject(const std::optional<std::string> &projectId, const std::optional<std::string> &taskId,
                      const std::string &projectField, const std::string &taskField)
    {
        const bool hasProject =
            projectId && ProjectRecords(m_call.database).exists(m_entry.workspaceId, *projectId);
        if (projectId && !hasProject)
            refuse(projectField, "The project is not there any more.");
        else if (taskId && !projectId)
            refuse(taskField, "A task needs its project.");
        else if (taskId && !TaskRecords(m_call.database).find(*projectId, *taskId))
            refuse(taskField, "The project has no such task.");
    }

    void checkShares()
    {
        std::int64_t sum = 0;
        for (std::size_t i = 0; i < m_entry.shares.size(); ++i) {
            const TimeShareResponse &share = m_entry.shares[i];
            sum += share.percent;
            checkProject(share.projectId, share.taskId, shareField(i, "projectId"), shareField(i, "taskId"));
        }
        if (!m_entry.shares.empty() && sum != 100)
            refuse("shares", "The shares must come to 100 percent.");
    }

    template <class Has>
    bool everyShare(Has has) const
    {
        return !m_entry.shares.empty() && std::ranges::all_of(m_entry.shares, has);
    }

    void checkRequired()
    {
        const WorkspaceSettingsResponse &settings = m_workspace.settings();
        const auto isDescribed = [](const auto &part) { return !trimmed(part.description).empty(); };
        const auto hasProject = [](const auto &part) { return part.projectId.has_value(); };
        const auto hasTask = [](const auto &part) { return part.taskId.has_value(); };
        if (settings.requireDescription && !isDescribed(m_entry) &&
            !(m_record.describeParts && everyShare(isDescribed)))
            refuse("description", "This workspace requires a description.");
        if (settings.requireProject &&
            !(m_entry.shares.empty() ? hasProject(m_entry) : everyShare(hasProject)))
            refuse("projectId", "This workspace requires a project.");
        if (settings.requireTask && !(m_entry.shares.empty() ? hasTask(m_entry) : everyShare(hasTask)))
            refuse("taskId", "This workspace requires a task.");
        if (settings.requireTag && m_entry.tagIds.empty())
            refuse("tagIds", "This workspace requires a tag.");
    }

    Call &m_call;
    const WorkspaceAccess &m_workspace;
    const EntryRecord &m_record;
    const TimeEntryResponse &m_entry;
    FieldErrors m_faults;
};

/// Whether an entry's end lies behind the lock, as that of a running one does.
bool endsAfter(const TimeEntryResponse &entry, Instant lock)
{
    return !entry.stop || *entry.stop >= lock;
}

bool differInEndAlone(TimeEntryResponse before, const TimeEntryResponse &after)
{
    before.stop = after.stop;
    before.version = after.version;
    return before == after;
}

} // namespace

TimeEntryRequest contentsOf(const CreateTimeEntryRequest &request)
{
    TimeEntryRequest contents;
    contents.description = request.description;
    contents.projectId = request.projectId;
    contents.taskId = request.taskId;
    contents.tagIds = request.tagIds;
    contents.isBillable = request.isBillable;
    contents.shares = request.shares;
    contents.describeParts = request.describeParts;
    contents.start = request.start;
    contents.stop = request.stop;
    return contents;
}

void takeContents(EntryRecord &record, const TimeEntryRequest &contents)
{
    TimeEntryResponse &entry = record.entry;
    record.describeParts = contents.describeParts;
    entry.description = contents.description;
    entry.projectId = contents.projectId;
    entry.taskId = contents.taskId;
    entry.isBillable = contents.isBillable;
    entry.start = contents.start;
    entry.stop = contents.stop;
    entry.tagIds.clear();
    for (const std::string &tagId : contents.tagIds) {
        if (std::ranges::find(entry.tagIds, tagId) == entry.tagIds.end())
            entry.tagIds.push_back(tagId);
    }
    entry.shares.clear();
    for (const TimeShareRequest &share : contents.shares)
        entry.shares.push_back(
            {share.projectId, share.taskId, share.isBillable, share.percent, share.description});
}

FieldErrors entryFaults(Call &call, const WorkspaceAccess &workspace, const EntryRecord &record)
{
    return EntryCheck(call, workspace, record).run();
}

bool changesLockedTime(const WorkspaceAccess &workspace, const TimeEntryResponse *before,
                       const TimeEntryResponse *after)
{
    const auto &lock = workspace.settings().lockedBefore;
    if (!lock)
        return false;
    const bool reachesIn = (before && before->start < *lock) || (after && after->start < *lock);
    if (!reachesIn)
        return false;
    return !before || !after || !differInEndAlone(*before, *after) || !endsAfter(*before, *lock) ||
           !endsAfter(*after, *lock);
}

HttpResponse timeLocked()
{
    return problem(403, "This time is locked.", "The workspace no longer allows changes to it.",
                   timeLockedProblemType);
}

} // namespace orvane::server
