// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Json.h"
#include "Support/Result.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Reads the lines that a log has grown by. Each thread has a reader of its own, whose buffer serves one file
/// after another.
///
/// Lines end at line feeds and nowhere else; a last one without is the tail, which is not consumed. A line
/// longer than `longestLine` is dropped without being held. Memory is bounded by that length.
class ActivityLineReader {
public:
    /// Bytes of a line, without its line feed.
    static constexpr std::int64_t longestLine = 1'048'576;
    /// Bytes read at a time while lines are short: what a processor's second cache holds with ease.
    static constexpr std::int64_t chunk = 262'144;
    /// Bytes by which the buffer grows for a long line.
    static constexpr std::int64_t growth = 65'536;

    struct State {
        std::int64_t offset =
            0; ///< what was consumed: always behind a line feed, or inside a line being dropped
        bool discarding = false; ///< the rest of a line that is too long is being dropped

        bool operator==(const State &) const = default;
    };
    struct Progress {
        State state;                        ///< to go on from at the next read
        std::string tail;                   ///< behind the last line feed
        std::int64_t bytes = 0;             ///< read
        std::int64_t peakBufferedBytes = 0; ///< most held in memory at once
    };
    enum class Failure {
        oversizedMetadata, ///< the first line, which names the session, is too long; nothing of it was handed
                           ///< out
        unreadable,        ///< the system refused to read on; the lines before were handed out
    };

    using OnLine = std::function<void(std::string_view)>;
    /// Reads an open file from `state` up to the byte `size`. The lines live as long as the call.
    Result<Progress, Failure> read(int descriptor, State state, std::int64_t size, const OnLine &onLine);

private:
    std::vector<char> m_buffer;
};

template <>
struct JsonFields<ActivityLineReader::State> {
    static constexpr auto list =
        JsonFieldList{jsonField<"offset">(&ActivityLineReader::State::offset),
                      jsonField<"discarding">(&ActivityLineReader::State::discarding)};
};

} // namespace orvane
