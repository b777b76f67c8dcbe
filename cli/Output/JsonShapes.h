// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/Account.h"
#include "Catalog/Catalog.h"
#include "Catalog/DayGroup.h"
#include "Output/CommandFailure.h"
#include "Report/EntryReport.h"
#include "Support/Json.h"
#include "Tracker/Tracker.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// What `--json` prints, command by command; scripts rely on these shapes. Every member is always there,
/// `null` where it has no value; dates are ISO 8601 with milliseconds, lengths whole seconds.
namespace orvane::shapes {

/// The members of any object, their values as text.
using Members = std::map<std::string, RawJson>;

struct Server {
    std::string url;
    bool local = false;
    bool reachable = false;
};

struct AccountPerson {
    std::string id;
    std::string email;
    bool automatic = false;
};

struct Workspace {
    std::string id;
    std::string name;
    WorkspaceRole role{};
};

/// What an entry's identifiers stand for; no text for what is not known here. Of a split entry, too, it is
/// the entry's own project.
struct EntryNames {
    std::optional<std::string> project;
    std::optional<std::string> client; ///< the project's
    std::optional<std::string> task;
    std::vector<std::optional<std::string>> tags; ///< in the order of the identifiers
    std::optional<std::string> color;             ///< the project's, "#rrggbb"
};

/// The server's members, and behind them what a script would otherwise have to work out.
struct Entry : TimeEntryResponse {
    std::int64_t seconds = 0; ///< of a running one up to now
    EntryNames names = {};
};

struct Day {
    std::chrono::year_month_day day;
    std::int64_t seconds = 0;
    std::vector<Entry> entries;
};

struct Queue {
    std::int64_t pending = 0;
    bool offline = false;
    std::int64_t conflicts = 0;
};

struct Status {
    Server server;
    AccountPerson account;
    Workspace workspace;
    std::optional<Entry> running;
    Day today;
    Queue outbox;
};

struct SignIn {
    std::optional<AccountPerson> account;
    Server server;
    /// Sentences for people, such as where the sign-in lies.
    std::vector<std::string> notes = {};
};

/// An entry among others that a filter chose.
struct ListedEntry : Entry {
    std::int64_t matchingSeconds = 0; ///< of a split one only the shares that the filter takes
};

struct ListedDay {
    std::chrono::year_month_day day;
    std::int64_t seconds = 0; ///< those that the filter takes
    std::vector<ListedEntry> entries;
};

struct Days {
    std::vector<ListedDay> days;
};

struct ReportGroup {
    std::optional<std::string> id;
    std::optional<std::string> name;
    std::optional<std::string> color;
    std::int64_t seconds = 0;
    std::int64_t billableSeconds = 0;
    std::optional<double> amount;
    std::optional<std::string> currency;
};

struct Report {
    std::vector<ReportGroup> groups;
    std::int64_t seconds = 0;
    std::int64_t billableSeconds = 0;
    std::optional<double> amount;
    std::optional<std::string> currency;
};

struct Outcome {
    SaveOutcome outcome = SaveOutcome::failed;
    bool queued = false;
    std::optional<Entry> entry;
    std::optional<std::string> message;
    std::vector<std::string> notes = {};
};

struct Error {
    std::optional<std::int64_t> status;
    std::optional<std::string> type;
    std::optional<std::string> title;
    std::optional<std::string> detail;
    std::optional<std::map<std::string, std::vector<std::string>>> fieldErrors;
    std::string message;
};

struct Failure {
    Error error;
};

/// A failure of a command that otherwise answers an outcome: both in one value.
struct FailedOutcome {
    SaveOutcome outcome = SaveOutcome::failed;
    bool queued = false;
    std::optional<Entry> entry;
    std::optional<std::string> message;
    std::vector<std::string> notes = {};
    Error error = {};
};

/// The failure of what the workspace wants more details for.
struct LackingOutcome {
    SaveOutcome outcome = SaveOutcome::needsDetails;
    bool queued = false;
    std::optional<Entry> entry;
    std::optional<std::string> message;
    std::vector<std::string> notes = {};
    Error error;
    std::vector<std::string> missing; ///< by the names of an entry's members
};

struct QueuedChange {
    std::int64_t seq = 0;
    RawJson change;
    std::optional<Entry> conflict;
};

struct Version {
    std::string version;
};

Server server(const Account &account);
AccountPerson person(const Account &account);
/// Offline is also who found the server away and so did not try to send anything.
Queue queue(const Outbox &outbox, bool isReachable);
/// A row that cannot be read has no change.
std::vector<QueuedChange> queuedChanges(const Outbox &outbox, const std::vector<std::int64_t> &unreadable,
                                        const Catalog &catalog, Instant now);
Entry entry(const TimeEntryResponse &entry, const Catalog &catalog, Instant now);
/// Nothing of nothing.
std::optional<Entry> entry(const std::optional<TimeEntryResponse> &entry, const Catalog &catalog,
                           Instant now);
Day day(const DayGroup &group, const Catalog &catalog, Instant now);
ListedDay listedDay(const DayGroup &group, const Catalog &catalog, Instant now, const EntryFilter &filter);
Report report(const EntryReport &report);
Error error(const CommandFailure &failure);

/// A value as `--json` prints it: one line, ended by a line break.
template <class T>
std::string text(const T &value)
{
    return encodeJson(value, JsonStyle{.writeNulls = true}) + "\n";
}

} // namespace orvane::shapes

namespace orvane {

template <>
struct JsonEnum<SaveOutcome> {
    static constexpr auto list =
        std::array{std::pair{SaveOutcome::saved, std::string_view("saved")},
                   std::pair{SaveOutcome::waiting, std::string_view("waiting")},
                   std::pair{SaveOutcome::rejected, std::string_view("rejected")},
                   std::pair{SaveOutcome::stopped, std::string_view("stopped")},
                   std::pair{SaveOutcome::needsDetails, std::string_view("needsDetails")},
                   std::pair{SaveOutcome::failed, std::string_view("failed")}};
};

} // namespace orvane
