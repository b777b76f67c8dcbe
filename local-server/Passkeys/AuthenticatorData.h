// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// What a passkey's keeper writes in binary, as WebAuthn lays it out. Pure functions; any thread. Texts are
/// bytes, and whatever they hold, nothing is read that is not there.
namespace orvane::server {

/// A passkey's public half: a point on P-256, uncompressed, in 65 bytes.
using PasskeyPoint = std::string;

struct AuthenticatorData {
    struct Passkey {
        std::string id;
        PasskeyPoint publicKey;
    };

    /// SHA-256 of the name of the server whose passkey it is.
    std::string rpIdHash;
    bool isUserPresent = false;
    bool isUserVerified = false;
    /// Grows with each signature, or stays 0.
    std::uint32_t counter = 0;
    /// A new one.
    std::optional<Passkey> passkey;
};

/// Nothing for what is cut off, has something behind it, or a key of another kind than ES256.
std::optional<AuthenticatorData> readAuthenticatorData(const std::string &bytes);

struct AttestationObject {
    std::string authenticatorData;
    /// By the new passkey itself. What its maker signed counts for nothing here.
    std::optional<std::string> selfSignature;
};
std::optional<AttestationObject> readAttestationObject(const std::string &bytes);

/// By ECDSA with SHA-256, in DER.
bool isSignedBy(const PasskeyPoint &publicKey, const std::string &data, const std::string &signature);

} // namespace orvane::server
