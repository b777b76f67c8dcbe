// SPDX-License-Identifier: GPL-3.0-or-later
#include "Tracker/StoredStep.h"

#include <algorithm>

namespace orvane {

namespace {

bool isCreation(const EntryTurn &turn)
{
    return !turn.before;
}

bool isRemoval(const EntryTurn &turn)
{
    return !turn.after;
}

/// The verb for a change of an entry that was there before and is after.
std::string verbOf(const TimeEntryResponse &before, const TimeEntryResponse &after)
{
    TimeEntryResponse stopped = before;
    stopped.stop = after.stop;
    stopped.version = after.version;
    if (!before.stop && after.stop && stopped == after)
        return "Stopped ";
    return after.shares.size() > 1 && before.shares != after.shares ? "Split " : "Changed ";
}

std::string sentenceOfOne(const EntryTurn &turn)
{
    if (isRemoval(turn))
        return "Deleted " + quotedEntry(*turn.before);
    if (isCreation(turn))
        return (turn.after->stop ? "Added " : "Started ") + quotedEntry(*turn.after);
    return verbOf(*turn.before, *turn.after) + quotedEntry(*turn.after);
}

} // namespace

std::string quotedEntry(const TimeEntryResponse &entry)
{
    return entry.description.empty() ? "an entry without a description" : "“" + entry.description + "”";
}

std::string sentenceOf(const EntryStep &step)
{
    const auto &turns = step.turns;
    if (turns.size() == 1)
        return sentenceOfOne(turns.front());
    // A start that ends what ran before is a start.
    if (!turns.empty() && isCreation(turns.back()) && !turns.back().after->stop)
        return sentenceOfOne(turns.back());
    const char *verb = "Changed ";
    if (std::ranges::all_of(turns, isRemoval))
        verb = "Deleted ";
    else if (std::ranges::all_of(turns, isCreation))
        verb = "Added ";
    return verb + std::to_string(turns.size()) + " entries";
}

} // namespace orvane
