// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"

#include <string>

namespace orvane {

/// Why the local store could not do what was asked. Nothing is retried, repaired or deleted on the way.
struct StoreError {
    enum class Kind {
        notADatabase, ///< another kind of file, or a damaged or truncated one
        readOnly,
        locked, ///< another program held it for longer than the busy time-out
        full,   ///< the disk, a quota or a limit on the size of files
        cannotOpen,
        other
    };

    Kind kind = Kind::other;
    /// What SQLite, or the file system, said; "unknown error" when it said nothing.
    std::string message = "unknown error";
    /// The store's file, for people's eyes and never for a log; empty for a store in memory.
    std::string file;

    bool operator==(const StoreError &) const = default;
};

using StoreStatus = Result<void, StoreError>;

/// A sentence that tells a person what is wrong and what became of the file.
std::string describe(const StoreError &error);

} // namespace orvane
