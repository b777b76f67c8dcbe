// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/ProposedEntryCheck.h"

#include "Entries/EntryChecks.h"
#include "Names/NameText.h"
#include "Projects/ProjectRecords.h"
#include "Requests/Call.h"
#include "Tags/TagRecords.h"

#include <algorithm>

namespace orvane::server {

namespace {

constexpr std::chrono::hours longestWork{24};
/// The agent's computer need not have the server's time to the second.
constexpr std::chrono::minutes clockDifference{1};

class ProposedEntryCheck {
public:
    ProposedEntryCheck(Call &call, const WorkspaceAccess &workspace, const std::optional<EntryRecord> &before,
                       const EntryRecord &after)
        : m_call(call), m_workspace(workspace), m_before(before), m_record(after), m_after(after.entry)
    {
    }

    ProposalRefusal run()
    {
        using Check = ProposedEntryCheck;
        constexpr ProposalRefusal (Check::*checks[])() = {&Check::texts,   &Check::times,  &Check::projects,
                                                          &Check::tags,    &Check::shares, &Check::lock,
                                                          &Check::overlap, &Check::details};
        for (const auto check : checks) {
            if (auto refusal = (this->*check)())
                return refusal;
        }
        return std::nullopt;
    }

private:
    ProposalRefusal texts()
    {
        const auto isUnreadable = [](const auto &part) { return hasControlCharacter(part.description); };
        if (isUnreadable(m_after) || std::ranges::any_of(m_after.shares, isUnreadable))
            return proposalRefusal("unreadableText",
                                   "The description holds characters that cannot be shown.");
        return std::nullopt;
    }

    ProposalRefusal times()
    {
        if (m_before && m_before->entry.start == m_after.start && m_before->entry.stop == m_after.stop)
            return std::nullopt;
        const Instant end = m_after.stop.value_or(m_after.start);
        if (m_after.stop && *m_after.stop <= m_after.start)
            return proposalRefusal("timesNotInOrder", "The end must lie after the start.");
        if (end - m_after.start > longestWork)
            return proposalRefusal("tooLong", "This is more than a day.");
        if (end > m_call.now + clockDifference)
            return proposalRefusal("inTheFuture", "This time has not passed yet.");
        return std::nullopt;
    }

    ProposalRefusal projects()
    {
        if (auto refusal = project(m_after.projectId, m_after.taskId))
            return refusal;
        for (const TimeShareResponse &share : m_after.shares) {
            if (auto refusal = project(share.projectId, share.taskId))
                return refusal;
        }
        return std::nullopt;
    }

    ProposalRefusal project(const std::optional<std::string> &projectId,
                            const std::optional<std::string> &taskId)
    {
        if (!projectId && taskId)
            return proposalRefusal("unknownTask", "A task needs its project.");
        if (!projectId || wasThere(*projectId, taskId))
            return std::nullopt;
        const auto found = ProjectRecords(m_call.database).find(m_workspace.id(), *projectId);
        if (!found)
            return proposalRefusal("unknownProject", "There is no such project.");
        if (found->isArchived)
            return proposalRefusal("archivedProject", "The project “" + found->name + "” is archived.");
        if (!taskId)
            return std::nullopt;
        const auto task = std::ranges::find(found->tasks, *taskId, &TaskResponse::id);
        if (task == found->tasks.end())
            return proposalRefusal("unknownTask", "The project “" + found->name + "” has no such task.");
        if (!task->isActive)
            return proposalRefusal("inactiveTask", "The task “" + task->name + "” is no longer in use.");
        return std::nullopt;
    }

    bool wasThere(const std::string &projectId, const std::optional<std::string> &taskId) const
    {
        const auto isThat = [&](const auto &part) {
            return part.projectId == projectId && part.taskId == taskId;
        };
        return m_before && (isThat(m_before->entry) || std::ranges::any_of(m_before->entry.shares, isThat));
    }

    ProposalRefusal tags()
    {
        for (const std::string &tagId : m_after.tagIds) {
            if (!TagRecords(m_call.database).find(m_workspace.id(), tagId))
                return proposalRefusal("unknownTag", "There is no such tag.");
        }
        return std::nullopt;
    }

    ProposalRefusal shares()
    {
        std::int64_t sum = 0;
        for (const TimeShareResponse &share : m_after.shares)
            sum += share.percent;
        if (!m_after.shares.empty() && sum != 100)
            return proposalRefusal("percents", "The parts must come to 100 percent; they come to " +
                                                   std::to_string(sum) + ".");
        return std::nullopt;
    }

    ProposalRefusal lock()
    {
        if (changesLockedTime(m_workspace, m_before ? &m_before->entry : nullptr, &m_after))
            return proposalRefusal("locked", "The workspace no longer allows changes to this time.");
        return std::nullopt;
    }

    /// New work is for time that nobody tracked: an agent's idea of it beside the user's would count twice.
    ProposalRefusal overlap()
    {
        if (m_before || !m_after.stop)
            return std::nullopt;
        const auto there = EntryRecords(m_call.database)
                               .inRange(m_call.caller.userId, m_workspace.id(), m_after.start, *m_after.stop);
        const auto covers = [](const TimeEntryResponse &entry) { return entry.stop != entry.start; };
        const auto found = std::ranges::find_if(there, covers);
        if (found == there.end())
            return std::nullopt;
        const std::string name =
            found->description.empty() ? std::string("An entry") : "“" + found->description + "”";
        return proposalRefusal(overlapRefusal,
                               name + " covers part of this time already; propose a change to it instead.");
    }

    /// What is left of the rules for entries is what the workspace requires.
    ProposalRefusal details()
    {
        const FieldErrors faults = entryFaults(m_call, m_workspace, m_record);
        if (faults.empty())
            return std::nullopt;
        return proposalRefusal("detailRequired", faults.begin()->second.front());
    }

    Call &m_call;
    const WorkspaceAccess &m_workspace;
    const std::optional<EntryRecord> &m_before;
    const EntryRecord &m_record;
    const TimeEntryResponse &m_after;
};

} // namespace

ProposalRefusal proposedEntryRefusal(Call &call, const WorkspaceAccess &workspace,
                                     const std::optional<EntryRecord> &before, const EntryRecord &after)
{
    return ProposedEntryCheck(call, workspace, before, after).run();
}

ProposalRefusalResponse proposalRefusal(std::string_view code, std::string sentence)
{
    return {std::string(code), std::move(sentence)};
}

} // namespace orvane::server
