// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/EntryChange.h"
#include "Catalog/TouchedEntry.h"
#include "OrvaneAPI/Schemas.h"
#include "Tracker/KnownDays.h"
#include "Tracker/Snapshot.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvane {

/// What the server has said of one workspace's entries, and of which days: first as the snapshot of an
/// earlier run tells it, then by answers, and by what it accepted or showed since. What is taken in answers
/// which entries it touched. Owned by the tracker; its thread.
class KnownEntries {
public:
    explicit KnownEntries(std::string workspaceId) : m_workspaceId(std::move(workspaceId)) {}

    /// Newest start first.
    const std::vector<TimeEntryResponse> &entries() const;
    /// The running entry, in whichever workspace it runs.
    const std::optional<TimeEntryResponse> &running() const { return m_running; }
    const KnownDays &days() const { return m_days; }
    /// Null when it is not known.
    const TimeEntryResponse *find(const std::string &id) const;
    /// Whether the server has listed the loaded weeks in this process.
    bool hasAnswer() const { return m_isListed; }
    /// Counts the changes that came from elsewhere than a list, so that a list from before one of them is not
    /// taken for the last word.
    std::uint64_t generation() const { return m_generation; }

    /// Takes over an earlier run's snapshot, of which the lists of the catalog are left for the caller.
    /// Nothing once the server has answered.
    TouchedEntries takeSnapshot(Snapshot snapshot);
    /// The loaded weeks and the running entry, each as the server listed it; entries that lie in no known day
    /// are forgotten.
    TouchedEntries takeWindow(DaySpan days, std::vector<TimeEntryResponse> entries);
    TouchedEntries takeWeekBefore(DaySpan days, std::vector<TimeEntryResponse> entries);
    TouchedEntries takeDays(DaySpan days, std::vector<TimeEntryResponse> entries);
    TouchedEntries takeRunning(std::optional<TimeEntryResponse> running);
    /// One entry as the server has it now.
    TouchedEntries take(const TimeEntryResponse &entry);
    TouchedEntries drop(const std::string &id);
    /// A change that another process sent: as it was asked for, until the server says how it is.
    TouchedEntries takeSent(const EntryChange &change);
    /// Days are others now; the entries stay until the server is asked again.
    void forgetDays() { m_days.clear(); }

    /// Whether something came that the snapshot does not hold yet.
    bool isUnsaved() const { return m_isUnsaved && (m_isListed || m_saved); }
    /// What is to be saved; none when the store holds it already.
    std::optional<Snapshot> unsaved(const std::optional<WorkspaceSettingsResponse> &settings,
                                    const Catalog &catalog, Instant begin);
    /// It could not be saved.
    void forgetSaved() { m_saved.reset(); }

private:
    AnswerMark nextAnswer();
    TouchedEntries replace(InstantInterval interval, std::vector<TimeEntryResponse> entries);
    Instant begin(Instant otherwise) const;

    std::string m_workspaceId;
    mutable std::vector<TimeEntryResponse> m_entries; ///< sorted when somebody looks
    mutable bool m_isSorted = true;
    std::optional<TimeEntryResponse> m_running;
    KnownDays m_days;
    /// Where the snapshot began, until the server has answered.
    std::optional<Instant> m_snapshotBegin;
    std::uint64_t m_answers = 0;
    bool m_isListed = false;
    std::uint64_t m_generation = 0;
    bool m_isUnsaved = false;
    /// What the store holds, as far as this process knows; the entries only as their digest, since a week can
    /// have thousands.
    std::optional<Snapshot> m_saved;
    std::uint64_t m_savedEntries = 0;
};

} // namespace orvane
