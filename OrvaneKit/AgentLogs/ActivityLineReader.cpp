// SPDX-License-Identifier: GPL-3.0-or-later
#include "AgentLogs/ActivityLineReader.h"

#include "Support/JsonImpl.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <unistd.h>

ORVANE_JSON(orvane::ActivityLineReader::State)

namespace orvane {

namespace {

std::int64_t readAt(int descriptor, char *into, std::int64_t count, std::int64_t offset)
{
    for (;;) {
        const ssize_t got = ::pread(descriptor, into, static_cast<std::size_t>(count), offset);
        if (got >= 0 || errno != EINTR)
            return got;
    }
}

const char *lineFeed(const char *at, const char *end)
{
    return static_cast<const char *>(std::memchr(at, '\n', static_cast<std::size_t>(end - at)));
}

} // namespace

Result<ActivityLineReader::Progress, ActivityLineReader::Failure>
ActivityLineReader::read(int descriptor, State state, std::int64_t size, const OnLine &onLine)
{
    if (state.offset < 0)
        return failure(Failure::unreadable);
    Progress progress{.state = state, .tail = {}};
    State &at = progress.state;
    const bool isWholeFile = state.offset == 0;
    if (std::ssize(m_buffer) < chunk)
        m_buffer.resize(chunk);
    std::int64_t held = 0; // bytes of a line that goes on, at the buffer's beginning
    while (at.offset + held < size) {
        if (std::ssize(m_buffer) - held < growth)
            m_buffer.resize(
                static_cast<std::size_t>(std::min(std::ssize(m_buffer) + growth, longestLine + growth)));
        const std::int64_t room = std::min(std::ssize(m_buffer) - held, size - at.offset - held);
        const std::int64_t got = readAt(descriptor, m_buffer.data() + held, room, at.offset + held);
        if (got < 0)
            return failure(Failure::unreadable);
        if (got == 0)
            break; // it was cut while we read
        progress.bytes += got;
        progress.peakBufferedBytes = std::max(progress.peakBufferedBytes, held + got);
        const char *const begin = m_buffer.data();
        const char *const end = begin + held + got;
        const char *line = begin;
        const char *feed = lineFeed(begin + held, end);
        for (; feed != nullptr; feed = lineFeed(line, end)) {
            if (feed - line > longestLine && isWholeFile && at.offset == 0)
                return failure(Failure::oversizedMetadata);
            if (!std::exchange(at.discarding, false) && feed - line <= longestLine)
                onLine({line, feed});
            at.offset += feed + 1 - line;
            line = feed + 1;
        }
        held = end - line;
        if (at.discarding || held > longestLine) {
            if (isWholeFile && at.offset == 0)
                return failure(Failure::oversizedMetadata);
            at.discarding = true;
            at.offset += held;
            held = 0;
        } else if (line != begin) {
            std::memmove(m_buffer.data(), line, static_cast<std::size_t>(held));
        }
    }
    progress.tail.assign(m_buffer.data(), static_cast<std::size_t>(held));
    return progress;
}

} // namespace orvane
