// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What holds for any lines of an agent's log, shared by its fuzz targets.

#include "AgentLogs/AgentLogState.h"
#include "AgentLogs/JsonBytes.h"
#include "AgentLogs/LogRecords.h"
#include "Support/Require.h"

#include <set>

namespace orvane::logfuzz {

/// Whether no object of a valid one names a member twice or with escapes. The full look refuses the former,
/// where the quick one has stopped before or takes one of them; the latter the quick look does not know.
inline bool isPlainlyNamed(const char *at, const char *end)
{
    jsonbytes::ObjectWalk walk(at, end);
    std::set<std::string_view> names;
    while (walk.next()) {
        if (walk.name().contains('\\') || !names.insert(walk.name()).second)
            return false;
        if (walk.first() == '{' && !isPlainlyNamed(walk.value(), end))
            return false;
        if (walk.first() != '[')
            continue;
        jsonbytes::ListWalk list(walk.value(), end);
        while (list.next()) {
            if (!isPlainlyNamed(list.object(), end))
                return false;
            list.taken(jsonbytes::ObjectWalk(list.object(), end).finish());
        }
    }
    return true;
}

template <class Visit>
void forEachLine(std::string_view text, const Visit &visit)
{
    while (!text.empty()) {
        const std::size_t feed = std::min(text.find('\n'), text.size());
        visit(text.substr(0, feed));
        text.remove_prefix(std::min(feed + 1, text.size()));
    }
}

/// Saving the state and reading on from it changes nothing.
inline AgentLogParser resumed(const AgentLogParser &parser)
{
    auto state = decodedParserState(encodedParserState(parser.state()));
    ORVANE_REQUIRE(state, "a parser's own state is refused");
    AgentLogParser again(std::move(*state));
    ORVANE_REQUIRE(again.sessions() == parser.sessions(), "a saved state tells something else");
    return again;
}

/// Reads all lines, once through and once resumed behind each, and those that are valid also in full.
inline void checkLines(AgentSource source, std::string_view text)
{
    AgentLogParser through(source);
    AgentLogParser stopping(source);
    AgentLogParser quick(source);
    AgentLogParser full(source, false);
    forEachLine(text, [&](std::string_view line) {
        through.read(line);
        stopping = resumed(stopping);
        stopping.read(line);
        ORVANE_REQUIRE(stopping.sessions() == through.sessions(), "resuming tells something else");
        if (!logrecords::read<logrecords::Record>(line) ||
            !isPlainlyNamed(line.data(), line.data() + line.size()))
            return;
        quick.read(line);
        full.read(line);
        ORVANE_REQUIRE(quick.state() == full.state(), "the quick look tells something else");
    });
}

} // namespace orvane::logfuzz
