// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane {

/// The two halves that tie a sign-in's code to who asked for it: the challenge goes out with the request, the
/// verifier is shown when the code is exchanged.
struct Pkce {
    /// 32 random bytes in base64url, 43 characters.
    std::string verifier;
    /// The SHA-256 of the verifier's text, in base64url.
    std::string challenge;

    static Pkce make();
};

std::string pkceChallenge(const std::string &verifier);

} // namespace orvane
