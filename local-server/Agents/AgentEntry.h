// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Agents/UserZone.h"
#include "Requests/Call.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvane::server {

/// A share of an entry's time, as an agent sees it.
struct AgentPart {
    std::int64_t percent = 0;
    std::optional<std::string> projectId;
    std::optional<std::string> project;
    std::optional<std::string> taskId;
    std::optional<std::string> task;
    bool isBillable = false;
    std::optional<std::string> description;
};

/// An entry as an agent sees it: with names beside identifiers, and without what is empty.
struct AgentEntry {
    std::string id;
    std::string version;
    ZonedTime start;
    /// None while it runs.
    std::optional<ZonedTime> stop;
    /// Up to now while it runs.
    std::int64_t seconds = 0;
    std::string description;
    std::optional<std::string> projectId;
    std::optional<std::string> project;
    std::optional<std::string> taskId;
    std::optional<std::string> task;
    std::optional<std::vector<std::string>> tagIds;
    std::optional<std::vector<std::string>> tags;
    bool isBillable = false;
    std::optional<std::vector<AgentPart>> parts;
};

/// Describes the caller's entries of one workspace, whose names it reads once.
class EntryDescriber {
public:
    EntryDescriber(Call &call, const std::string &workspaceId);

    /// The caller's.
    const UserZone &zone() const { return m_zone; }
    AgentEntry describe(const TimeEntryResponse &entry) const;

private:
    using Names = std::map<std::string, std::string, std::less<>>;
    static std::optional<std::string> nameIn(const Names &names, const std::optional<std::string> &id);
    AgentPart describe(const TimeShareResponse &share) const;

    UserZone m_zone;
    Instant m_now;
    Names m_projects;
    Names m_tasks;
    Names m_tags;
};

/// The time zone of the caller's account.
UserZone zoneOf(Call &call);

} // namespace orvane::server

template <>
struct orvane::JsonFields<orvane::server::AgentPart> {
    static constexpr auto list = JsonFieldList{jsonField<"percent">(&server::AgentPart::percent),
                                               jsonField<"projectId">(&server::AgentPart::projectId),
                                               jsonField<"project">(&server::AgentPart::project),
                                               jsonField<"taskId">(&server::AgentPart::taskId),
                                               jsonField<"task">(&server::AgentPart::task),
                                               jsonField<"isBillable">(&server::AgentPart::isBillable),
                                               jsonField<"description">(&server::AgentPart::description)};
};

template <>
struct orvane::JsonFields<orvane::server::AgentEntry> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&server::AgentEntry::id),
                                               jsonField<"version">(&server::AgentEntry::version),
                                               jsonField<"start">(&server::AgentEntry::start),
                                               jsonField<"stop">(&server::AgentEntry::stop),
                                               jsonField<"seconds">(&server::AgentEntry::seconds),
                                               jsonField<"description">(&server::AgentEntry::description),
                                               jsonField<"projectId">(&server::AgentEntry::projectId),
                                               jsonField<"project">(&server::AgentEntry::project),
                                               jsonField<"taskId">(&server::AgentEntry::taskId),
                                               jsonField<"task">(&server::AgentEntry::task),
                                               jsonField<"tagIds">(&server::AgentEntry::tagIds),
                                               jsonField<"tags">(&server::AgentEntry::tags),
                                               jsonField<"isBillable">(&server::AgentEntry::isBillable),
                                               jsonField<"parts">(&server::AgentEntry::parts)};
};
