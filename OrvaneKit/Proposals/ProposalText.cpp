// SPDX-License-Identifier: GPL-3.0-or-later
#include "Proposals/ProposalText.h"

#include "Catalog/Catalog.h"
#include "Time/DateFormatters.h"
#include "Time/Durations.h"
#include "Time/UserTime.h"

#include <algorithm>

namespace orvane {

namespace {

using Shares = std::vector<TimeShareResponse>;

/// The contents of the entry that a proposal would make, or that it would change as it stood.
ProposedEntrySnapshotResponse contentsOf(const ProposalPlanResponse &plan)
{
    if (plan.before)
        return *plan.before;
    ProposedEntrySnapshotResponse contents;
    if (!plan.work)
        return contents;
    contents.description = plan.work->description;
    contents.projectId = plan.work->projectId;
    contents.taskId = plan.work->taskId;
    contents.tagIds = plan.work->tagIds;
    contents.isBillable = plan.work->isBillable;
    contents.start = plan.work->range.start;
    contents.stop = plan.work->range.end;
    contents.shares = plan.work->shares;
    return contents;
}

std::string described(const std::string &description)
{
    return description.empty() ? std::string("No description") : description;
}

/// Where time is split its parts say what is billed, not the entry.
bool isMixed(const Shares &shares)
{
    return std::ranges::any_of(shares, [&](const TimeShareResponse &share) {
        return share.isBillable != shares.front().isBillable;
    });
}

std::string billed(bool isBillable, const Shares &shares)
{
    if (isMixed(shares))
        return "Partly billable";
    return (shares.empty() ? isBillable : shares.front().isBillable) ? "Billable" : "Not billable";
}

/// The parts as the changes leave them.
Shares sharesAfter(const ProposedEntrySnapshotResponse &before, const ProposedFieldsResponse &changes)
{
    if (changes.shares)
        return *changes.shares;
    Shares shares = changes.project ? Shares() : before.shares;
    for (TimeShareResponse &share : shares)
        share.isBillable = changes.isBillable.value_or(share.isBillable);
    return shares;
}

class ProposalWords {
public:
    ProposalWords(const Catalog &catalog, const UserTime &time) : m_catalog(catalog), m_time(time) {}

    std::string project(const std::optional<std::string> &projectId,
                        const std::optional<std::string> &taskId) const
    {
        if (!projectId)
            return "No project";
        const ProjectResponse *project = m_catalog.project(*projectId);
        const TaskResponse *task = taskId ? m_catalog.task(*taskId) : nullptr;
        const std::string name = project != nullptr ? project->name : "Unknown project";
        return task != nullptr ? name + " › " + task->name : name;
    }

    std::string place(const std::optional<std::string> &projectId, const std::optional<std::string> &taskId,
                      const Shares &shares) const
    {
        if (shares.empty())
            return project(projectId, taskId);
        std::string text;
        const bool tellsBilling = isMixed(shares);
        for (const TimeShareResponse &share : shares) {
            text += text.empty() ? "" : ", ";
            text += project(share.projectId, share.taskId) + " " + std::to_string(share.percent) + "%";
            if (tellsBilling && share.isBillable)
                text += " billable";
            if (!share.description.empty())
                text += " “" + share.description + "”";
        }
        return text;
    }

    std::string tags(const std::vector<std::string> &ids) const
    {
        std::vector<std::string> names;
        for (const std::string &id : ids) {
            const TagResponse *tag = m_catalog.tag(id);
            names.push_back("#" + (tag != nullptr ? tag->name : std::string("unknown")));
        }
        std::ranges::sort(names);
        std::string text;
        for (const std::string &name : names)
            text += (text.empty() ? "" : " ") + name;
        return text;
    }

    std::string day(Instant at) const { return m_time.dayLabel(m_time.dayKey(at)); }

    /// With its day where that is another one than the entry's.
    std::string clock(Instant at, Instant entryStart) const
    {
        const std::string label = m_time.clockLabel(at);
        return m_time.dayKey(at) == m_time.dayKey(entryStart) ? label : day(at) + ", " + label;
    }

    std::string end(const std::optional<Instant> &stop, Instant start) const
    {
        return stop ? clock(*stop, start) : std::string("now");
    }

    /// One end of the entry; to the second where the minutes do not tell the two apart.
    ProposedField moment(std::string name, const std::optional<Instant> &before, Instant after,
                         Instant entryStart) const
    {
        ProposedField field{std::move(name), before ? clock(*before, entryStart) : "Still running",
                            clock(after, entryStart)};
        if (before && field.before == field.after) {
            const std::string_view pattern = m_time.hour12() ? "h:mm:ss a" : "HH:mm:ss";
            field.before = DateFormatters::string(*before, pattern, m_time);
            field.after = DateFormatters::string(after, pattern, m_time);
        }
        return field;
    }

private:
    const Catalog &m_catalog;
    const UserTime &m_time;
};

std::vector<ProposedField> fieldsOf(const ProposedEntrySnapshotResponse &before,
                                    const ProposedFieldsResponse &changes, const ProposalWords &words)
{
    std::vector<ProposedField> fields;
    if (changes.description)
        fields.push_back({"Description", described(before.description), described(*changes.description)});
    if (changes.project || changes.shares) {
        const ProjectChoice choice = changes.project.value_or(ProjectChoice{before.projectId, before.taskId});
        fields.push_back({"Project", words.place(before.projectId, before.taskId, before.shares),
                          words.place(choice.projectId, choice.taskId, changes.shares.value_or(Shares()))});
    }
    if (changes.replaceTags) {
        const std::string had = words.tags(before.tagIds);
        const std::string has = words.tags(changes.tagIds.value_or(std::vector<std::string>()));
        fields.push_back({"Tags", had.empty() ? "No tags" : had, has.empty() ? "No tags" : has});
    }
    const std::string wasBilled = billed(before.isBillable, before.shares);
    const std::string isBilled =
        billed(changes.isBillable.value_or(before.isBillable), sharesAfter(before, changes));
    if (wasBilled != isBilled)
        fields.push_back({"Billing", wasBilled, isBilled});
    if (changes.start)
        fields.push_back(words.moment("Start", before.start, *changes.start, before.start));
    if (changes.stop)
        fields.push_back(words.moment("Stop", before.stop, *changes.stop, before.start));
    return fields;
}

} // namespace

ProposalText ProposalText::of(const AgentProposalResponse &proposal, const Catalog &catalog,
                              const UserTime &time)
{
    const ProposalPlanResponse &plan = proposal.plan;
    const ProposedEntrySnapshotResponse entry = contentsOf(plan);
    const ProposalWords words(catalog, time);
    ProposalText text;
    text.action = plan.action == "create" ? "New entry" : plan.action == "remove" ? "Delete" : "Change";
    text.title = proposal.agentName + " proposes " +
                 (plan.action == "create"   ? ""
                  : plan.action == "remove" ? "to delete "
                                            : "to change ") +
                 proposedEntry(proposal);
    text.description = entry.description;
    text.day = words.day(entry.start);
    text.times = time.clockLabel(entry.start) + " – " + words.end(entry.stop, entry.start);
    if (entry.stop)
        text.length = Durations::shortLabel(secondsBetween(entry.start, *entry.stop));
    text.place = words.place(entry.projectId, entry.taskId, entry.shares);
    text.tags = words.tags(entry.tagIds);
    text.billing = billed(entry.isBillable, entry.shares);
    if (plan.changes && !plan.changes->remove)
        text.fields = fieldsOf(entry, *plan.changes, words);
    text.note = proposal.note;
    return text;
}

std::optional<TimeEntryResponse> entryBefore(const AgentProposalResponse &proposal)
{
    const auto &before = proposal.plan.before;
    if (!before)
        return std::nullopt;
    TimeEntryResponse entry;
    entry.id = before->id;
    entry.workspaceId = proposal.workspaceId;
    entry.description = before->description;
    entry.projectId = before->projectId;
    entry.taskId = before->taskId;
    entry.tagIds = before->tagIds;
    entry.isBillable = before->isBillable;
    entry.start = before->start;
    entry.stop = before->stop;
    entry.shares = before->shares;
    entry.version = before->version;
    return entry;
}

std::string proposedEntry(const AgentProposalResponse &proposal)
{
    const std::string description = contentsOf(proposal.plan).description;
    return description.empty() ? std::string("an entry without a description") : "“" + description + "”";
}

} // namespace orvane
