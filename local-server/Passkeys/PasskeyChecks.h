// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Passkeys/AuthenticatorData.h"
#include "Passkeys/PasskeySite.h"
#include "Support/Instant.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Whether a passkey's answer is one to what this server asked. Pure functions; any thread.
namespace orvane::server {

/// What was asked: once, by this server.
struct PasskeyQuestion {
    PasskeySite site;
    /// As base64url.
    std::string challenge;
};

struct NewPasskey {
    /// Bytes.
    std::string id;
    PasskeyPoint publicKey;
    std::uint32_t counter = 0;
};
/// The passkey in the credential's JSON; nothing when it was not made for this question, by a user who was
/// verified.
std::optional<NewPasskey> createdPasskey(std::string_view credentialJson, const PasskeyQuestion &question);

/// An answer to a sign-in, of which nothing is known to be true yet. Bytes.
struct PasskeySignature {
    std::string id;
    std::string clientData;
    std::string authenticatorData;
    std::string signature;
    std::string userHandle;
};
std::optional<PasskeySignature> readPasskeySignature(std::string_view credentialJson);
/// The passkey's new count; nothing when the answer is not to this question, not by this passkey, or by a
/// copy of it, whose count lags behind.
std::optional<std::uint32_t> checkedCounter(const PasskeySignature &answer, const PasskeyQuestion &question,
                                            const PasskeyPoint &publicKey, std::uint32_t counter);

/// What is asked of a device that is to make a passkey, in WebAuthn's JSON.
struct PasskeyOwner {
    std::string userId;
    std::string email;
    std::string name;
    /// The passkeys that they have, as base64url.
    std::vector<std::string> passkeyIds;
};
std::string creationOptionsJson(const PasskeyQuestion &question, const PasskeyOwner &owner,
                                std::chrono::milliseconds patience);

} // namespace orvane::server
