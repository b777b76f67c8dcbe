// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <vector>

/// What a passkey answers, and the JSON that WebAuthn writes it in. All members are bytes unless they say
/// otherwise. Pure functions; any thread.
namespace orvane {

/// Who signs in.
struct PasskeyAssertion {
    std::string credentialId;
    std::string authenticatorData;
    std::string signature;
    std::string userHandle;
};

/// A passkey that was made.
struct PasskeyAttestation {
    std::string credentialId;
    std::string attestationObject;
    /// Texts, as in "usb".
    std::vector<std::string> transports;
};

enum class PasskeyRequest { assertion, registration };

/// What the passkey signs: that this was asked, with that challenge, by the server of that origin.
std::string passkeyClientData(PasskeyRequest request, const std::string &challenge,
                              const std::string &origin);

/// As the server takes them. `clientData` is what was signed.
std::string passkeyCredentialJson(const PasskeyAssertion &answer, const std::string &clientData);
std::string passkeyCredentialJson(const PasskeyAttestation &answer, const std::string &clientData);

} // namespace orvane
