// SPDX-License-Identifier: GPL-3.0-or-later
#include "Agents/AgentEntry.h"
#include "Agents/ToolMaking.h"
#include "Entries/EntryRecords.h"
#include "Support/DateText.h"

namespace orvane::server {

struct EntryDays {
    std::optional<std::string> workspaceId;
    std::optional<std::chrono::year_month_day> day;
    std::optional<std::chrono::year_month_day> from;
    std::optional<std::chrono::year_month_day> to;
};

struct AgentEntries {
    std::string timeZone;
    std::chrono::year_month_day from;
    std::chrono::year_month_day to;
    std::vector<AgentEntry> entries;
    std::optional<std::string> notice;
};

struct RunningQuestion {};

struct RunningEntry {
    std::optional<AgentEntry> entry;
    std::optional<std::string> workspaceId;
    std::optional<std::string> notice;
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::EntryDays> {
    static constexpr auto list = JsonFieldList{
        jsonField<"workspaceId">(&server::EntryDays::workspaceId), jsonField<"day">(&server::EntryDays::day),
        jsonField<"from">(&server::EntryDays::from), jsonField<"to">(&server::EntryDays::to)};
};

template <>
struct JsonFields<server::AgentEntries> {
    static constexpr auto list = JsonFieldList{jsonField<"timeZone">(&server::AgentEntries::timeZone),
                                               jsonField<"from">(&server::AgentEntries::from),
                                               jsonField<"to">(&server::AgentEntries::to),
                                               jsonField<"entries">(&server::AgentEntries::entries),
                                               jsonField<"notice">(&server::AgentEntries::notice)};
};

template <>
struct JsonFields<server::RunningQuestion> {
    static constexpr auto list = JsonFieldList{};
};

template <>
struct JsonFields<server::RunningEntry> {
    static constexpr auto list = JsonFieldList{jsonField<"entry">(&server::RunningEntry::entry),
                                               jsonField<"workspaceId">(&server::RunningEntry::workspaceId),
                                               jsonField<"notice">(&server::RunningEntry::notice)};
};

} // namespace orvane

namespace orvane::server {

namespace {

using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::size_t mostEntries = 500;
constexpr std::chrono::days mostDays{31};

constexpr MemberNote dayNotes[] = {
    {"workspaceId", "From list_workspaces; left out, the user's default workspace."},
    {"day", "One day in the user's time zone, such as 2026-03-01. Left out, with from and to: today."},
    {"from", "The first of several days, instead of day."},
    {"to", "The last of them, which counts too; at most 31 days."},
};

struct DayRange {
    year_month_day first;
    year_month_day last;
};

Result<DayRange, std::string> daysOf(const EntryDays &arguments, year_month_day today)
{
    const auto &[workspaceId, day, from, to] = arguments;
    if (from.has_value() != to.has_value())
        return failure(std::string("Give both from and to, or one day."));
    if (day && from)
        return failure(std::string("Give either day, or from and to."));
    if (!from)
        return DayRange{day.value_or(today), day.value_or(today)};
    if (*to < *from)
        return failure(std::string("The day to must not lie before the day from."));
    if (sys_days{*to} - sys_days{*from} >= mostDays)
        return failure(std::string("Ask for at most 31 days at a time."));
    return DayRange{*from, *to};
}

Result<AgentEntries, std::string> listEntries(AgentCall &agent, const EntryDays &arguments)
{
    const auto workspace = enterWorkspace(agent, arguments.workspaceId);
    if (!workspace)
        return failure(workspace.error());
    const EntryDescriber describer(agent.call, workspace->id());
    const UserZone &zone = describer.zone();
    const auto range = daysOf(arguments, zone.day(agent.call.now));
    if (!range)
        return failure(range.error());
    const year_month_day after{sys_days{range->last} + std::chrono::days{1}};
    const auto found = EntryRecords(agent.call.database)
                           .inRange(agent.call.caller.userId, workspace->id(), zone.startOf(range->first),
                                    zone.startOf(after));
    AgentEntries out{zone.name(), range->first, range->last, {}, {}};
    for (std::size_t i = 0; i < std::min(found.size(), mostEntries); ++i)
        out.entries.push_back(describer.describe(found[i]));
    if (found.size() > mostEntries)
        out.notice = "Only the first " + std::to_string(mostEntries) + " of " + std::to_string(found.size()) +
                     " entries are listed. Ask for fewer days at a time.";
    return out;
}

Result<RunningEntry, std::string> runningEntry(AgentCall &agent, const RunningQuestion &)
{
    const auto running = EntryRecords(agent.call.database).running(agent.call.caller.userId);
    if (!running || !mayEnter(agent.access, running->entry.workspaceId))
        return RunningEntry{.entry = {},
                            .workspaceId = {},
                            .notice = "No timer is running in the workspaces that you may see."};
    const EntryDescriber describer(agent.call, running->entry.workspaceId);
    return RunningEntry{
        .entry = describer.describe(running->entry), .workspaceId = running->entry.workspaceId, .notice = {}};
}

} // namespace

void addEntryTools(std::vector<AgentTool> &tools)
{
    tools.push_back(agentTool(
        {.name = "list_entries",
         .title = "List Entries",
         .description = "The user's own entries of a day, or of up to 31 days, in the order of their start; "
                        "one that only reaches into those days is listed too. Look here before proposing "
                        "entries, so that no time is proposed twice, and before proposing changes, which "
                        "need an entry's id and its version.",
         .notes = dayNotes},
        listEntries));
    tools.push_back(agentTool({.name = "running_entry",
                               .title = "Running Entry",
                               .description = "What the user is tracking at this moment, if anything."},
                              runningEntry));
}

} // namespace orvane::server
