// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane {

/// Why a passkey request came to nothing.
enum class PasskeyError {
    /// What the server asked for cannot be read, or is not the server's to ask.
    invalidOptions,
    /// This computer has nothing that could answer, or that refused.
    unavailable,
    /// The user's doing, or they left the key waiting for too long.
    cancelled,
    /// One request at a time.
    busy,
};

/// A sentence for people.
std::string describe(PasskeyError error);

} // namespace orvane
