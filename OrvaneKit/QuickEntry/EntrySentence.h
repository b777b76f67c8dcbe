// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "QuickEntry/SentenceCatalog.h"
#include "QuickEntry/SentenceMentions.h"
#include "QuickEntry/TextRange.h"
#include "Time/ClockTime.h"
#include "Time/UserTime.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace orvane {

/// Reads an entry from one typed line: "Fix the sync bug @api #deep-work 9-10:30 $". Pure; any thread.
///
/// A sentence never fails: what is not understood stays in the description. Case plays no part in anything
/// but the description. Words are what lies between white space.
///
/// Mentions. "@" names a project, a task or a client, "#" a tag; the name is found as in the palette. Names
/// with spaces are written in quotes (@"Big Project"), or joined or hyphened (@bigproject, @big-project), and
/// @project/task names a task in its project, @client/project a project of its client, unless a name has the
/// slash itself. Where the word behind the sign is no whole name, the longest run of words from there on that
/// is one is taken (@Big Project kick-off). Only what is active is found.
///  - The best match is taken if it is a good one (a whole name, the beginning of a word, or initials, but
///    not letters in the middle of a word) and no other of its kind is as good. Two names that match equally
///    are told apart by letter case and accents, two projects by a client that was named before.
///  - Where a project, a client and a task match equally well, the project is meant, then the client.
///  - A sentence has one project, one task and one client: the first that is named of each. Once a project is
///    known, a task is looked for in that project alone, wherever in the line it stands.
///  - A number behind "#" is a tag only as its whole name: "Review #2" means an issue.
///  - No more than 64 mentions are looked at.
///
/// Billable: each word that is just "$" says so and is left out.
///
/// The time phrase is the end of what is left after the mentions and "$". These are tried in this order:
///  - "45m ago", "2 hours ago": an entry that has been running for so long.
///  - "9-10:30", "9 - 10:30 pm", "9:00 to 10:30", each also after "from". Two bare numbers (3-4) are no
///    range, and neither are two ends in the same minute.
///  - "since 9:40": an entry that runs since then; "since yesterday 9:40" too.
///  - "90m", "1.5h", "1h30", "2 hours 30 minutes", each also after "for": so long, up to now. A number
///    without a unit is no duration: "for 90" is description.
/// A shape that is recognised but makes no sense (a range that would be too long) is description as a whole,
/// rather than the half of it that could be read.
///
/// A day may stand before or after the time, also with "on": "today", "yesterday", a weekday (the most recent
/// such day up to today), 2025-03-07, 7.3., 7.3.2025, 3/7 or 3/7/25. Slashes follow the user's date format; a
/// date that is possible only the other way round is read so. A date without a year is the nearest in the
/// past, a year of two digits lies after 2000. "ago" takes no day.
///
/// The half of the day may be typed once for both ends of a range (9-10pm), as long as the start stays before
/// the end. On a 12-hour clock it may also be left out: an end that would lie before the start is the
/// afternoon's where that fits (11:00-1:00), and so is "since 3:30" once it is half past three.
class EntrySentence {
public:
    /// The user's preferences that decide how a line is read.
    struct Options {
        bool hour12 = false;                   ///< times are shown on a 12-hour clock
        std::string dateFormat = "yyyy-MM-dd"; ///< "dd/MM/yyyy" and the like; decides what 3/4 is
        bool bareRanges = false; ///< two bare numbers (9-10) are a range: for a field that holds only a time

        bool operator==(const Options &) const = default;
        static Options of(const PreferencesResponse &preferences);
    };

    /// A chip under the field.
    enum class Chip { project, client, tag, billable };

    struct Weekday {
        int number = 0; ///< 0 for Sunday to 6 for Saturday
        bool operator==(const Weekday &) const = default;
    };
    struct Date {
        DayKey day;
        bool operator==(const Date &) const = default;
    };
    struct Today {
        bool operator==(const Today &) const = default;
    };
    struct Yesterday {
        bool operator==(const Yesterday &) const = default;
    };
    using DayRef = std::variant<Weekday, Date, Today, Yesterday>;

    enum class Meridiem { none, am, pm };

    /// A time of day as it was typed. `meridiem` may also have been taken over from the other end of a range.
    struct TypedClock {
        int hours = 0;   ///< as typed; with a meridiem the hour on the dial
        int minutes = 0; ///< 0 to 59
        Meridiem meridiem = Meridiem::none;

        bool operator==(const TypedClock &) const = default;
        /// The time of day on the 24-hour clock.
        ClockTime time() const;
        /// Text that ClockTime reads.
        static std::optional<TypedClock> parse(std::string_view text);
    };

    struct Ago {
        double seconds = 0; ///< above 0
        bool operator==(const Ago &) const = default;
    };
    struct Since {
        TypedClock start;
        bool operator==(const Since &) const = default;
    };
    struct Range {
        TypedClock start;
        TypedClock end;
        bool operator==(const Range &) const = default;
    };
    struct Duration {
        double seconds = 0; ///< above 0
        bool operator==(const Duration &) const = default;
    };
    using Time = std::variant<Ago, Since, Range, Duration>;

    /// A chip and what it stands for.
    struct ShownChip {
        Chip chip = Chip::project;
        std::string id; ///< empty for the billable one
        bool operator==(const ShownChip &) const = default;
    };

    struct Reading {
        std::string description; ///< the words that are left, with one space between
        std::optional<std::string> projectID;
        std::optional<std::string> taskID; ///< of that project
        std::optional<std::string> clientID;
        std::vector<std::string> tagIDs; ///< in the order typed, each once
        std::vector<UnreadMention> unreadMentions;
        bool isBillable = false;
        std::optional<Time> time;
        std::optional<DayRef> day;         ///< says something only beside a time
        std::string timeText;              ///< the words of the time phrase, with one space between
        std::vector<TextRange> timeRanges; ///< where those are in the line, in order

        bool operator==(const Reading &) const = default;
        /// In the order project, client, tags, billable.
        std::vector<ShownChip> chips() const;
    };

    /// The stretch that a reading stands for, in whole milliseconds; the end lies after the start. A running
    /// entry has no `stop`.
    struct Span {
        Instant start;
        std::optional<Instant> stop;
        bool operator==(const Span &) const = default;
    };

    /// A mention that is being typed. It covers the sign and the query.
    struct Mention {
        char sign = '@';   ///< or '#'
        std::string query; ///< what follows the sign, as UTF-8
        std::size_t start = 0;
        std::size_t end = 0; ///< both in UTF-16 code units of the line

        bool operator==(const Mention &) const = default;
    };

    /// `text` is UTF-8; what is not stays as it is in the description. A time that is read also resolves.
    static Reading read(std::string_view text, const SentenceCatalog &catalog, const Options &options,
                        Instant now, const UserTime &calendar);

    /// Where a time lies. Nothing when it lies nowhere: a running entry would start later than now, a range
    /// takes more than 16 hours, or the day or the time of day was skipped by the zone.
    ///
    /// Clock times are those of the named day, else of today, by the rules of UserTime where a clock time is
    /// skipped or comes twice.
    ///  - since: a clock time later than now is yesterday's, unless a day is named.
    ///  - range: stands as typed, even later today. An end before the start is the next day's, for at most 16
    ///    hours by the clock. Such a night without a named day is the one nearest to now: at 3:00, 22:00-2:00
    ///    has just ended.
    ///  - duration: ends now; on a named day at the time of day that it is now.
    static std::optional<Span> resolve(const Time &time, const std::optional<DayRef> &day, Instant now,
                                       const UserTime &calendar);

    /// Whether an end that lies before its start can be the next day's: within 16 hours by the clock.
    static bool mayBeNight(ClockTime start, ClockTime end);

    /// The mention that the cursor stands in or at the end of: the whole word between white space, if it
    /// begins with "@" or "#". The cursor counts UTF-16 code units; one behind the end counts as the end.
    static std::optional<Mention> mentionAt(std::u16string_view text, std::size_t cursor);
    static std::optional<Mention> mentionAt(std::string_view text, std::size_t cursor);
};

} // namespace orvane
