// SPDX-License-Identifier: GPL-3.0-or-later
#include "Output/JsonShapes.h"

#include "Catalog/EntrySeconds.h"
#include "OrvaneAPI/SchemaFields.h"
#include "Support/JsonImpl.h"

#include <algorithm>

namespace orvane {

template <>
struct JsonFields<shapes::Server> {
    static constexpr auto list =
        JsonFieldList{jsonField<"url">(&shapes::Server::url), jsonField<"local">(&shapes::Server::local),
                      jsonField<"reachable">(&shapes::Server::reachable)};
};
template <>
struct JsonFields<shapes::AccountPerson> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&shapes::AccountPerson::id),
                                               jsonField<"email">(&shapes::AccountPerson::email),
                                               jsonField<"automatic">(&shapes::AccountPerson::automatic)};
};
template <>
struct JsonFields<shapes::Workspace> {
    static constexpr auto list =
        JsonFieldList{jsonField<"id">(&shapes::Workspace::id), jsonField<"name">(&shapes::Workspace::name),
                      jsonField<"role">(&shapes::Workspace::role)};
};
template <>
struct JsonFields<shapes::EntryNames> {
    static constexpr auto list = JsonFieldList{
        jsonField<"project">(&shapes::EntryNames::project), jsonField<"client">(&shapes::EntryNames::client),
        jsonField<"task">(&shapes::EntryNames::task), jsonField<"tags">(&shapes::EntryNames::tags),
        jsonField<"color">(&shapes::EntryNames::color)};
};

namespace {

/// A field of what `Owner` is derived from as one of its own.
template <class Owner, JsonName Name, class Base, class Member>
constexpr auto ownField(const JsonField<Name, Base, Member> &field)
{
    return JsonField<Name, Owner, Member>{field.member, field.presence};
}

} // namespace

template <>
struct JsonFields<shapes::Entry> {
    static constexpr auto list =
        json::withFields(JsonFields<TimeEntryResponse>::list, [](const auto &...field) {
            return JsonFieldList{ownField<shapes::Entry>(field)...,
                                 jsonField<"seconds">(&shapes::Entry::seconds),
                                 jsonField<"names">(&shapes::Entry::names)};
        });
};
template <>
struct JsonFields<shapes::Day> {
    static constexpr auto list =
        JsonFieldList{jsonField<"day">(&shapes::Day::day), jsonField<"seconds">(&shapes::Day::seconds),
                      jsonField<"entries">(&shapes::Day::entries)};
};
template <>
struct JsonFields<shapes::ListedEntry> {
    static constexpr auto list = json::withFields(JsonFields<shapes::Entry>::list, [](const auto &...field) {
        return JsonFieldList{ownField<shapes::ListedEntry>(field)...,
                             jsonField<"matchingSeconds">(&shapes::ListedEntry::matchingSeconds)};
    });
};
template <>
struct JsonFields<shapes::ListedDay> {
    static constexpr auto list = JsonFieldList{jsonField<"day">(&shapes::ListedDay::day),
                                               jsonField<"seconds">(&shapes::ListedDay::seconds),
                                               jsonField<"entries">(&shapes::ListedDay::entries)};
};
template <>
struct JsonFields<shapes::Queue> {
    static constexpr auto list = JsonFieldList{jsonField<"pending">(&shapes::Queue::pending),
                                               jsonField<"offline">(&shapes::Queue::offline),
                                               jsonField<"conflicts">(&shapes::Queue::conflicts)};
};
template <>
struct JsonFields<shapes::Status> {
    static constexpr auto list = JsonFieldList{
        jsonField<"server">(&shapes::Status::server),       jsonField<"account">(&shapes::Status::account),
        jsonField<"workspace">(&shapes::Status::workspace), jsonField<"running">(&shapes::Status::running),
        jsonField<"today">(&shapes::Status::today),         jsonField<"outbox">(&shapes::Status::outbox)};
};
template <>
struct JsonFields<shapes::SignIn> {
    static constexpr auto list = JsonFieldList{jsonField<"account">(&shapes::SignIn::account),
                                               jsonField<"server">(&shapes::SignIn::server),
                                               jsonField<"notes">(&shapes::SignIn::notes)};
};
template <>
struct JsonFields<shapes::Days> {
    static constexpr auto list = JsonFieldList{jsonField<"days">(&shapes::Days::days)};
};
template <>
struct JsonFields<shapes::ReportGroup> {
    static constexpr auto list =
        JsonFieldList{jsonField<"id">(&shapes::ReportGroup::id),
                      jsonField<"name">(&shapes::ReportGroup::name),
                      jsonField<"color">(&shapes::ReportGroup::color),
                      jsonField<"seconds">(&shapes::ReportGroup::seconds),
                      jsonField<"billableSeconds">(&shapes::ReportGroup::billableSeconds),
                      jsonField<"amount">(&shapes::ReportGroup::amount),
                      jsonField<"currency">(&shapes::ReportGroup::currency)};
};
template <>
struct JsonFields<shapes::Report> {
    static constexpr auto list = JsonFieldList{
        jsonField<"groups">(&shapes::Report::groups), jsonField<"seconds">(&shapes::Report::seconds),
        jsonField<"billableSeconds">(&shapes::Report::billableSeconds),
        jsonField<"amount">(&shapes::Report::amount), jsonField<"currency">(&shapes::Report::currency)};
};
template <>
struct JsonFields<shapes::Outcome> {
    static constexpr auto list = JsonFieldList{
        jsonField<"outcome">(&shapes::Outcome::outcome), jsonField<"queued">(&shapes::Outcome::queued),
        jsonField<"entry">(&shapes::Outcome::entry), jsonField<"message">(&shapes::Outcome::message),
        jsonField<"notes">(&shapes::Outcome::notes)};
};
template <>
struct JsonFields<shapes::Error> {
    static constexpr auto list = JsonFieldList{jsonField<"status">(&shapes::Error::status),
                                               jsonField<"type">(&shapes::Error::type),
                                               jsonField<"title">(&shapes::Error::title),
                                               jsonField<"detail">(&shapes::Error::detail),
                                               jsonField<"fieldErrors">(&shapes::Error::fieldErrors),
                                               jsonField<"message">(&shapes::Error::message)};
};
template <>
struct JsonFields<shapes::Failure> {
    static constexpr auto list = JsonFieldList{jsonField<"error">(&shapes::Failure::error)};
};
template <>
struct JsonFields<shapes::FailedOutcome> {
    static constexpr auto list = JsonFieldList{jsonField<"outcome">(&shapes::FailedOutcome::outcome),
                                               jsonField<"queued">(&shapes::FailedOutcome::queued),
                                               jsonField<"entry">(&shapes::FailedOutcome::entry),
                                               jsonField<"message">(&shapes::FailedOutcome::message),
                                               jsonField<"notes">(&shapes::FailedOutcome::notes),
                                               jsonField<"error">(&shapes::FailedOutcome::error)};
};
template <>
struct JsonFields<shapes::LackingOutcome> {
    static constexpr auto list = JsonFieldList{jsonField<"outcome">(&shapes::LackingOutcome::outcome),
                                               jsonField<"queued">(&shapes::LackingOutcome::queued),
                                               jsonField<"entry">(&shapes::LackingOutcome::entry),
                                               jsonField<"message">(&shapes::LackingOutcome::message),
                                               jsonField<"notes">(&shapes::LackingOutcome::notes),
                                               jsonField<"error">(&shapes::LackingOutcome::error),
                                               jsonField<"missing">(&shapes::LackingOutcome::missing)};
};
template <>
struct JsonFields<shapes::QueuedChange> {
    static constexpr auto list = JsonFieldList{jsonField<"seq">(&shapes::QueuedChange::seq),
                                               jsonField<"change">(&shapes::QueuedChange::change),
                                               jsonField<"conflict">(&shapes::QueuedChange::conflict)};
};
template <>
struct JsonFields<shapes::Version> {
    static constexpr auto list = JsonFieldList{jsonField<"version">(&shapes::Version::version)};
};

ORVANE_JSON(shapes::Status)
ORVANE_JSON(shapes::SignIn)
ORVANE_JSON(shapes::Days)
ORVANE_JSON(shapes::Report)
ORVANE_JSON(shapes::Outcome)
ORVANE_JSON(shapes::Failure)
ORVANE_JSON(shapes::FailedOutcome)
ORVANE_JSON(shapes::LackingOutcome)
ORVANE_JSON(std::vector<shapes::QueuedChange>)
ORVANE_JSON(shapes::Version)
ORVANE_JSON(shapes::Members)
ORVANE_JSON(std::string)
ORVANE_JSON(std::vector<WorkspaceSummary>)
ORVANE_JSON(std::vector<TaskResponse>)

} // namespace orvane

namespace orvane::shapes {

Server server(const Account &account)
{
    return {account.server(), account.isLocal(), account.isReachable()};
}

AccountPerson person(const Account &account)
{
    return {account.me().id, account.me().email, account.isAutomatic()};
}

Queue queue(const Outbox &outbox, bool isReachable)
{
    return {static_cast<std::int64_t>(outbox.pending().size()), outbox.isOffline() || !isReachable,
            static_cast<std::int64_t>(outbox.conflicts().size())};
}

std::vector<QueuedChange> queuedChanges(const Outbox &outbox, const std::vector<std::int64_t> &unreadable,
                                        const Catalog &catalog, Instant now)
{
    std::vector<QueuedChange> rows;
    for (const Outbox::Pending &pending : outbox.pending()) {
        rows.push_back({pending.seq, RawJson{encodeJson(pending.change, JsonStyle{.writeNulls = true})},
                        entry(pending.conflict, catalog, now)});
    }
    for (const std::int64_t seq : unreadable)
        rows.push_back({seq, RawJson{"null"}, std::nullopt});
    std::ranges::sort(rows, {}, &QueuedChange::seq);
    return rows;
}

Entry entry(const TimeEntryResponse &entry, const Catalog &catalog, Instant now)
{
    EntryNames names;
    const ProjectResponse *project = entry.projectId ? catalog.project(*entry.projectId) : nullptr;
    if (project) {
        names.project = project->name;
        names.color = project->color;
        if (const auto *client = project->clientId ? catalog.client(*project->clientId) : nullptr)
            names.client = client->name;
    }
    if (const TaskResponse *task = entry.taskId ? catalog.task(*entry.taskId) : nullptr)
        names.task = task->name;
    for (const std::string &id : entry.tagIds) {
        const TagResponse *tag = catalog.tag(id);
        names.tags.push_back(tag ? std::optional(tag->name) : std::nullopt);
    }
    return {entry, entrySeconds(entry, now), std::move(names)};
}

std::optional<Entry> entry(const std::optional<TimeEntryResponse> &known, const Catalog &catalog, Instant now)
{
    return known ? std::optional(entry(*known, catalog, now)) : std::nullopt;
}

Day day(const DayGroup &group, const Catalog &catalog, Instant now)
{
    Day day{group.day.civil(), EntryFilter{}.seconds(group.entries, catalog, now), {}};
    day.entries.reserve(group.entries.size());
    for (const TimeEntryResponse &known : group.entries)
        day.entries.push_back(entry(known, catalog, now));
    return day;
}

ListedDay listedDay(const DayGroup &group, const Catalog &catalog, Instant now, const EntryFilter &filter)
{
    ListedDay day{group.day.civil(), filter.seconds(group.entries, catalog, now), {}};
    day.entries.reserve(group.entries.size());
    for (const TimeEntryResponse &known : group.entries)
        day.entries.push_back(
            {entry(known, catalog, now), filter.seconds(std::span(&known, 1), catalog, now)});
    return day;
}

Report report(const EntryReport &report)
{
    const auto amount = [](const EntryReport::Line &line) {
        constexpr double hundredths = 100;
        return line.amount ? std::optional(static_cast<double>(*line.amount) / hundredths) : std::nullopt;
    };
    Report shape{.groups = {},
                 .seconds = report.total.seconds,
                 .billableSeconds = report.total.billableSeconds,
                 .amount = amount(report.total),
                 .currency = report.currency};
    for (const EntryReport::Line &line : report.groups)
        shape.groups.push_back({line.id, line.name, line.color, line.seconds, line.billableSeconds,
                                amount(line), report.currency});
    return shape;
}

Error error(const CommandFailure &failure)
{
    return {failure.status, failure.type,        failure.title,
            failure.detail, failure.fieldErrors, failure.message};
}

} // namespace orvane::shapes
