// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Passkeys/PasskeyPlatform.h"
#include "Support/RetryTimer.h"

#include <memory>
#include <vector>

struct fido_dev;

namespace orvane {

/// Closes the key and gives up what stands for it.
struct SecurityKeyCloser {
    void operator()(fido_dev *key) const;
};
/// A key that is open. Used on one thread, but for cancelling what it does.
using SecurityKey = std::unique_ptr<fido_dev, SecurityKeyCloser>;

/// Passkeys on the security keys that are plugged in, through libfido2. The user is verified by the key's
/// PIN, or by its own sensor where it has one. Of several keys, one after the other is asked until one has
/// what is wanted.
///
/// What the keys take their time for happens on a thread of its own.
class SecurityKeys final : public PasskeyPlatform {
public:
    /// Opens what is plugged in; on the keys' thread.
    using Finder = std::function<std::vector<SecurityKey>()>;
    static std::vector<SecurityKey> pluggedIn();

    explicit SecurityKeys(Finder find = pluggedIn,
                          std::unique_ptr<RetryTimer> timer = std::make_unique<SystemRetryTimer>());
    ~SecurityKeys() override;

    Task<Result<PasskeyAssertion, PasskeyError>>
    assertion(PasskeyAssertionOptions options, std::string clientData, PasskeyPrompts prompts) override;
    Task<Result<PasskeyAttestation, PasskeyError>>
    registration(PasskeyRegistrationOptions options, std::string clientData, PasskeyPrompts prompts) override;
    void cancel() override;

private:
    class Desk;
    using SharedDesk = std::shared_ptr<Desk>;
    /// What a key is asked: by the PIN, or by its own sensor when that is null. Answers libfido2's code.
    using Question = std::function<int(fido_dev *, const char *pin)>;

    static Task<int> ask(SharedDesk desk, Question question, PasskeyPrompts prompts);
    static Task<int> askKey(SharedDesk desk, std::size_t key, Question question, PasskeyPrompts prompts);
    void cancelAgain();

    /// Held by what is under way too, which may take longer than this object.
    SharedDesk m_desk;
    std::unique_ptr<RetryTimer> m_timer;
};

} // namespace orvane
