// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Catalog/Catalog.h"
#include "Catalog/EntryRequest.h"
#include "Catalog/EntryRules.h"
#include "EntryInput/EntryTimes.h"

#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// An entry while a person says what it is: what is known of it so far, a sentence, and single settings. What
/// has been put in is not looked up or checked before somebody asks for the times or the request.
///
/// Of the details, what is put in last counts. Of the times, those that are named singly count more than
/// those of a sentence, in whatever order. A value; on the catalog's thread, the main one.
class EntryDraft {
public:
    /// Nothing is known yet.
    EntryDraft() = default;
    /// Everything that the entry says; what is put in changes it.
    static EntryDraft of(const TimeEntryResponse &entry);

    /// What the entry says of its work, but not when: for a new one that goes on with it.
    static EntryDraft continuing(const TimeEntryResponse &entry);

    /// Puts in what a sentence says. What it does not mention stays; its tags replace those there were, and
    /// its project takes the task away unless it names one.
    void take(const EntrySentence::Reading &reading, const Catalog &catalog);

    void setDescription(std::string description);
    /// None, too. Another project takes the task of the one before away; any choice takes away the parts of a
    /// split, and brings the project's own choice of billable unless that was set.
    void setProject(std::optional<std::string> projectId, const Catalog &catalog);
    /// None, too. A task brings its project along, and takes away the parts of a split.
    void setTask(std::optional<std::string> taskId, const Catalog &catalog);
    /// Instead of those there are, each once.
    void setTags(std::vector<std::string> tagIds);
    void setBillable(bool isBillable);
    /// The parts of a split, whose percents sum to 100; none: it is not split. Without `describeParts` each
    /// says what the entry says.
    void setShares(std::vector<SplitPart> shares, bool describeParts);
    void setStart(TypedMoment start) { m_start = start; }
    void setStop(TypedMoment stop) { m_stop = stop; }

    const EntryDetails &details() const { return m_details; }
    /// What the workspace requires and is not known yet.
    std::vector<RequiredDetail> missing(const EntryRules &rules) const { return rules.missing(m_details); }

    /// When the entry lies. Nothing while no time of a new one is known, whose timer can only start now.
    Result<std::optional<EntryTimes>, EntryTimesProblem> times(const UserTime &time, Instant now) const;
    /// Whether the start was named singly with the day it is on, or as an age.
    bool namesStartDay() const { return m_start && !m_start->clock; }

    /// The whole entry; nothing as for the times.
    Result<std::optional<EntryRequest>, EntryTimesProblem> request(const UserTime &time, Instant now) const;
    /// The entry at other times than were said.
    EntryRequest at(EntryTimes times) const { return {m_details, times.start, times.stop, m_describeParts}; }

private:
    EntryDetails m_details;
    bool m_describeParts = false;
    bool m_isBillableSet = false;
    /// Of an entry that is being changed.
    std::optional<EntryTimes> m_before;
    /// The time phrase of the sentence.
    std::optional<EntrySentence::Time> m_phrase;
    std::optional<EntrySentence::DayRef> m_day;
    std::optional<TypedMoment> m_start;
    std::optional<TypedMoment> m_stop;
};

} // namespace orvane
