// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/Schemas.h"
#include "Passkeys/PasskeyError.h"
#include "Support/Result.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a server asks a passkey for. Pure functions; any thread.
namespace orvane {

/// For signing in.
struct PasskeyAssertionOptions {
    /// Bytes.
    std::string challenge;
    std::string rpId;

    bool operator==(const PasskeyAssertionOptions &) const = default;
};

/// For creating a passkey.
struct PasskeyRegistrationOptions {
    struct Party {
        std::string id;
        std::string name;
        bool operator==(const Party &) const = default;
    };
    struct User {
        /// 1 to 64 bytes.
        std::string id;
        std::string name;
        bool operator==(const User &) const = default;
    };

    /// Bytes.
    std::string challenge;
    Party rp;
    User user;
    /// The passkeys that the account has already, as bytes; a key that holds one of them makes no other.
    std::vector<std::string> excludedIds;

    bool operator==(const PasskeyRegistrationOptions &) const = default;
};

/// `invalidOptions` for what is missing or badly encoded.
Result<PasskeyAssertionOptions, PasskeyError>
readAssertionOptions(const NativePasskeyOptionsResponse &options);
/// From the options' WebAuthn JSON. The error as above.
Result<PasskeyRegistrationOptions, PasskeyError> readRegistrationOptions(std::string_view json);

// Base64url without padding. Reading takes nothing but what writing gives.
std::string base64UrlOf(std::string_view bytes);
std::optional<std::string> fromBase64Url(std::string_view text);

/// What a passkey for this server says that it was asked by: "https://HOST" with the port that is not 443.
/// Nothing where it could have none: an address without TLS, or without a name.
std::optional<std::string> passkeyOrigin(const std::string &server);
/// Whether a server may ask for the passkeys of `rpId`: its own host's name, or a parent of that which is no
/// public suffix, under which strangers have names too. A browser sees to that where one stands between.
bool isRelyingParty(const std::string &rpId, const std::string &server);

} // namespace orvane
