// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AgentLogs/ActivityFileInventory.h"
#include "AgentLogs/ActivityLineReader.h"
#include "AgentLogs/AgentLogParser.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Reading log files: each from where it was read last, several at once.
namespace orvane::logreading {

/// Tells a log that grew from one that was replaced.
struct Fingerprint {
    /// Bytes of the beginning that count.
    static constexpr std::int64_t prefixLength = 4096;
    /// Bytes before the point up to which it was read that count.
    static constexpr std::int64_t boundaryLength = 64;

    std::int64_t prefix = 0;   ///< of the beginning, as far as it was read
    std::int64_t boundary = 0; ///< of what stands before that point

    bool operator==(const Fingerprint &) const = default;

    /// Of an open file that was consumed up to `offset`; nothing when it is shorter now. Adds what it reads
    /// to `bytesRead`.
    static std::optional<Fingerprint> of(int descriptor, std::int64_t offset, std::int64_t &bytesRead);
};

/// What a log file gave, and all that reading on needs.
struct Cached {
    ActivityFileStamp stamp;
    AgentLogParser::State parser;
    ActivityLineReader::State state;
    Fingerprint fingerprint;
    std::vector<AgentSession> sessions;
    bool isComplete = false; ///< false when it could not be read

    /// About how much memory it takes, in bytes.
    std::int64_t cost() const;
};
using SharedCached = std::shared_ptr<const Cached>;

/// A file to read and, when it was read before, what it gave then.
struct Job {
    AgentSource source = AgentSource::claude;
    const ActivityFileInventory::File *file = nullptr;
    SharedCached before;
};

struct Cost {
    std::int64_t bytesRead = 0;
    std::int64_t peakBufferedBytes = 0;
};

/// Called with the bytes done so far, one call at a time.
using OnBytes = std::function<void(std::int64_t)>;

/// Asked before each file, on any thread.
using IsWanted = std::function<bool()>;

/// Reads the files on all cores and gives what each has, in the order of the jobs. A file that cannot be read
/// gives one that is not complete; so do those not begun when nobody wanted them any more. Returns when all
/// is done.
std::vector<SharedCached> readAll(std::span<const Job> jobs, Cost &cost, const OnBytes &onBytes,
                                  const IsWanted &isWanted);

} // namespace orvane::logreading
