// SPDX-License-Identifier: GPL-3.0-or-later
#include "Catalog/DayGroup.h"
#include "Support/DateText.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TimeEntryResponse entry(std::string id, std::string_view start)
{
    TimeEntryResponse entry;
    entry.id = std::move(id);
    entry.start = instantFromIso8601(start).value();
    return entry;
}

/// "2026-03-02: b a | 2026-03-01: c"
std::string shown(const std::vector<DayGroup> &groups)
{
    std::string text;
    for (const DayGroup &group : groups) {
        text += (text.empty() ? "" : " | ") + group.day.description() + ":";
        for (const TimeEntryResponse &item : group.entries)
            text += " " + item.id;
    }
    return text;
}

TEST(DayGroup, PutsEntriesOnTheUsersDaysLatestFirst)
{
    const std::vector entries = {entry("a", "2026-03-01T22:30:00Z"), entry("b", "2026-03-01T23:30:00Z"),
                                 entry("d", "2026-02-27T12:00:00Z"), entry("c", "2026-02-27T12:00:00Z"),
                                 entry("e", "2026-03-01T08:00:00Z")};
    EXPECT_EQ(shown(DayGroup::of(entries, *UserTime::make("UTC"))), "2026-03-01: b a e | 2026-02-27: c d");
    EXPECT_EQ(shown(DayGroup::of(entries, *UserTime::make("Europe/Paris"))),
              "2026-03-02: b | 2026-03-01: a e | 2026-02-27: c d");
    EXPECT_TRUE(DayGroup::of({}, UserTime::utc()).empty());
}

TEST(DayGroup, ShowsADayOnceThoughTheClockWentBackOverMidnight)
{
    // In St. John's the clock went back from 0:01 on 7 November 2010 to 23:01 on the 6th.
    const auto time = *UserTime::make("America/St_Johns");
    const std::vector entries = {entry("a", "2010-11-07T02:30:30Z"), entry("b", "2010-11-07T02:45:00Z"),
                                 entry("c", "2010-11-07T05:00:00Z")};
    EXPECT_EQ(shown(DayGroup::of(entries, time)), "2010-11-07: c a | 2010-11-06: b");
}

} // namespace
} // namespace orvane
