// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/AccountStores.h"
#include "Catalog/DayGroup.h"
#include "Outbox/Outbox.h"
#include "Report/EntryFilter.h"
#include "Terminal/TextTable.h"
#include "Tracker/Tracker.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Entries as people read them on a terminal, in the user's own time and with the names of the catalog.
/// Used from the main thread while the tracker lives.
class EntryWriter {
public:
    /// What the filter does not take of entries is neither shown nor counted.
    EntryWriter(Tracker &tracker, TerminalStyle style, EntryFilter filter = {});

    /// The running timer, or that there is none, the user's rhythm of work and rest where it is on, and
    /// today's entries.
    std::string status(const DayGroup &today, const PreferencesResponse &preferences) const;
    /// Entries by day under headings with totals; all days share their columns. A single day without entries
    /// says what to do next.
    std::string days(const std::vector<DayGroup> &days) const;
    /// "Started  a1b2c3  09:30 – …  Write the README  Website · docs".
    std::string done(std::string_view verb, const TimeEntryResponse &entry) const;
    /// `nothing` is said of an empty queue.
    std::string queue(const std::deque<Outbox::Pending> &pending, std::string_view nothing) const;
    /// That the running timer begins only later than what was asked for, and both ways out of that.
    std::string timerAhead(const TimeEntryResponse &running) const;

    /// A change that was refused while nobody waited, whole.
    std::string refusal(const Refusal &refusal) const;
    /// A change that met another one, and how to settle it.
    std::string conflict(const Outbox::Pending &pending) const;

private:
    /// The lines of the entries of all days in their order, and the columns that the widest takes.
    struct Layout {
        std::vector<std::string> lines;
        int width = 0;
    };

    std::string runningTimer(int width) const;
    std::string timerLines(TextCell what, const TextCell &place, const TextCell &length, int width) const;
    std::string pomodoro(const PreferencesResponse &preferences) const;
    Layout layoutOf(const std::vector<DayGroup> &days) const;
    std::string dayText(const DayGroup &day, const Layout &layout, std::size_t firstLine) const;
    std::string emptyDay(DayKey day) const;
    std::string heading(const std::string &title, std::int64_t seconds, int width) const;
    TextTable table() const;
    std::vector<TextCell> row(const TimeEntryResponse &entry, const std::string &shortId) const;
    TextCell description(const std::string &text) const;
    TextCell where(const TimeEntryResponse &entry) const;
    TextCell split(const TimeEntryResponse &entry) const;
    void addProject(TextCell &cell, const std::optional<std::string> &projectId,
                    const std::optional<std::string> &taskId) const;
    std::int64_t seconds(std::span<const TimeEntryResponse> entries) const;
    std::string clock(Instant instant) const;
    std::string span(Instant start, std::optional<Instant> stop) const;
    std::string duration(const TimeEntryResponse &entry) const;
    std::string shortId(const std::string &id) const;
    /// The entry as a change would leave it; `before` is what the change starts from.
    TimeEntryResponse changed(const EntryChange &change, std::optional<TimeEntryResponse> before) const;

    Tracker &m_tracker;
    const UserTime &m_time;
    TerminalStyle m_style;
    EntryFilter m_filter;
    Instant m_now;
};

/// "Offline: 2 changes are waiting to be sent." (`why` says what is in the way), or what else is to be said
/// about the queue; empty when there is nothing to say.
std::string queueMessage(const Outbox &outbox, bool isReachable, const std::string &why);

/// That changes wait in the store of another account of the server, or that it cannot be read.
std::string besideMessage(const WaitingStore &store, bool isLocal);
/// That rows of the queue cannot be read.
std::string unreadableMessage(std::int64_t count, const std::string &file);

/// "1 change", "2 changes".
std::string counted(std::int64_t count, std::string_view noun);

} // namespace orvane
