// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Calendar/DaySegment.h"
#include "Time/UserTime.h"

#include <functional>
#include <optional>
#include <variant>

namespace orvane {

/// What a pointer does to the calendar: it makes a new block, moves one, drags one of its edges, or presses
/// it.
///
/// A view calls `press`, `drag` while the button is down and `release`, draws what `preview` and `newBlock`
/// say, and does what `release` answers. It is owned by the view and lives on its thread. Minutes are those
/// of the day's wall clock (see DaySegment); what the pointer gives is rounded to steps of 15 and kept in the
/// day.
class CalendarDrag {
public:
    enum class Edge { start, end };

    /// What the pointer went down on: a block, there an edge or the body, or a place where there is none.
    struct OnEntry {
        DaySegment segment;
        std::optional<Edge> edge; ///< none for the body
        double minute = 0;        ///< where the pointer is
    };
    struct OnEmpty {
        DayKey day;
        double minute = 0;
    };
    using Target = std::variant<OnEntry, OnEmpty>;

    struct Create {
        DayKey day;
        double anchor = 0; ///< the start of the 15 minutes in which the pointer went down
        double current = 0;
        bool operator==(const Create &) const = default;
    };
    /// An entry that is running, is locked, or is pressed on a day after the one that it began on.
    struct Open {
        TimeEntryResponse entry;
        bool operator==(const Open &) const = default;
    };
    struct Move {
        TimeEntryResponse entry;
        DayKey day;
        double grabOffset = 0; ///< minutes from the block's start to where it was taken
        double duration = 0;   ///< the entry's whole length in minutes
        double start = 0;
        bool isMoved = false;
        bool operator==(const Move &) const = default;
    };
    struct Resize {
        Edge edge = Edge::end;
        TimeEntryResponse entry;
        DayKey day;
        double start = 0;
        double end = 0;
        bool isMoved = false;
        bool operator==(const Resize &) const = default;
    };
    using State = std::variant<Create, Open, Move, Resize>;

    /// An entry to create, or one to change: of that nothing but its times.
    struct Save {
        std::optional<TimeEntryResponse> entry; ///< as it was; none for a new one
        Instant start;
        Instant stop;
        bool operator==(const Save &) const = default;
    };
    struct OpenEntry {
        TimeEntryResponse entry;
        bool operator==(const OpenEntry &) const = default;
    };
    using Outcome = std::variant<std::monostate, Save, OpenEntry>;

    struct Block {
        DayKey day;
        double startMinute = 0;
        double endMinute = 0;
        bool operator==(const Block &) const = default;
    };

    /// `isLocked` says that an entry may not be changed, `isDayLocked` that a day takes no new or moved ones.
    CalendarDrag(UserTime time, std::function<bool(const TimeEntryResponse &)> isLocked,
                 std::function<bool(DayKey)> isDayLocked);

    /// False when nothing begins: an empty place of a day that is locked or that the zone skipped.
    bool press(const Target &target);
    /// The pointer is on that day at that minute, `travelled` points away from where it went down.
    void drag(DayKey day, double minute, double travelled);
    /// Ends what the press began. A moved entry keeps its whole length and a dragged edge is all that
    /// changes; a moved block that never left its place, like any other pressed one, is opened.
    Outcome release();
    /// Forgets what the press began.
    void cancel() { m_state.reset(); }

    /// None before a press and after a release.
    const std::optional<State> &state() const { return m_state; }
    /// The block of the entry that is being changed, as it would be; cut at midnight.
    std::optional<DaySegment> preview() const;
    /// The block of the entry that would be created; none where it would have no length.
    std::optional<Block> newBlock() const;

    /// When the wall clock of the day shows a minute, cut to a whole one: the first time where it does so
    /// twice, and moved on by the gap where it never does. From 1440 on it is the start of the next day.
    static Instant instantAt(DayKey day, double minute, const UserTime &time);

private:
    bool takesEntries(DayKey day) const;
    State stateFor(const OnEntry &target) const;
    void follow(Create &create, DayKey day, double minute, double travelled) const;
    void follow(Open &open, DayKey day, double minute, double travelled) const;
    void follow(Move &move, DayKey day, double minute, double travelled) const;
    void follow(Resize &resize, DayKey day, double minute, double travelled) const;
    Outcome outcome(const Create &create) const;
    Outcome outcome(const Open &open) const;
    Outcome outcome(const Move &move) const;
    Outcome outcome(const Resize &resize) const;

    UserTime m_time;
    std::function<bool(const TimeEntryResponse &)> m_isLocked;
    std::function<bool(DayKey)> m_isDayLocked;
    std::optional<State> m_state;
};

} // namespace orvane
