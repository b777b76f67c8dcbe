// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Passkeys/PasskeyCredential.h"
#include "Passkeys/PasskeyOptions.h"
#include "Support/Task.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

/// What the user has to do meanwhile. Called on the main thread.
struct PasskeyPrompts {
    /// Asks for the key's PIN; nothing when they would rather not. Before the first try nobody knows how many
    /// are left; after a wrong one that is told.
    std::function<Task<std::optional<std::string>>(std::optional<int> triesLeft)> pin;
    /// The key waits for a touch.
    std::function<void()> touch;
};

/// What this computer keeps passkeys in: for each operating system another one. It always verifies the user,
/// not only that somebody is there.
///
/// Owner: the PasskeyService, which lets one request at a time through, checked. Thread: the main thread.
class PasskeyPlatform {
public:
    PasskeyPlatform() = default;
    PasskeyPlatform(const PasskeyPlatform &) = delete;
    PasskeyPlatform &operator=(const PasskeyPlatform &) = delete;
    /// What is under way ends as cancelled.
    virtual ~PasskeyPlatform() = default;

    static std::unique_ptr<PasskeyPlatform> ofThisComputer();

    /// The options are those of the server, `clientData` is what gets signed.
    virtual Task<Result<PasskeyAssertion, PasskeyError>>
    assertion(PasskeyAssertionOptions options, std::string clientData, PasskeyPrompts prompts) = 0;
    virtual Task<Result<PasskeyAttestation, PasskeyError>>
    registration(PasskeyRegistrationOptions options, std::string clientData, PasskeyPrompts prompts) = 0;
    /// The request ends soon, as cancelled.
    virtual void cancel() = 0;
};

} // namespace orvane
