// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"

#include <optional>
#include <string>

namespace orvane {

/// Why an account could not be opened, signed in to or left.
struct AccountError {
    enum class Kind {
        /// The session has ended; the user has to sign in again.
        signedOut,
        /// Nobody ever signed in to this server.
        neverSignedIn,
        /// The server cannot be reached and nothing is known of the account yet.
        unreachable,
        /// The file of entries and queued changes cannot be used.
        store,
        /// The server refused.
        refused,
    };
    Kind kind = Kind::unreachable;
    /// A sentence for the user.
    std::string message;
    std::optional<CallError> error = {};

    static AccountError of(const CallError &error);
};

} // namespace orvane
