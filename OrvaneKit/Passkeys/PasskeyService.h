// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Passkeys/PasskeyOptions.h"
#include "Passkeys/PasskeyPlatform.h"
#include "Support/Eventual.h"

#include <QObject>

namespace orvane {

/// Signing in with a passkey, and making one: the server's options in, the JSON for the server out. One
/// request at a time; what it wants of the user meanwhile it says with its signals.
///
/// Owner: a screen's model, or a command. Thread: the main thread. When it goes, its request ends.
class PasskeyService final : public QObject {
    Q_OBJECT

public:
    explicit PasskeyService(std::unique_ptr<PasskeyPlatform> platform = PasskeyPlatform::ofThisComputer());
    ~PasskeyService() override;

    /// The credential's JSON.
    using Answer = Result<std::string, PasskeyError>;
    /// `server` is the address that the options came from. Options of another server's passkeys are
    /// `invalidOptions`.
    Task<Answer> assertion(std::string server, PasskeyAssertionOptions options);
    Task<Answer> registration(std::string server, PasskeyRegistrationOptions options);

    bool isBusy() const { return m_isBusy; }
    /// Answers `pinWanted`; nothing when it is not wanted.
    void givePin(std::string pin);
    void cancel();

Q_SIGNALS:
    /// The key's PIN is to be typed. How many tries are left, -1 before the first.
    void pinWanted(int triesLeft);
    /// The key is to be touched.
    void touchWanted();

private:
    using Pin = Eventual<std::optional<std::string>>;

    std::optional<std::string> mayAsk(const std::string &server, const std::string &rpId) const;
    PasskeyPrompts prompts();
    Pin askPin(std::optional<int> triesLeft);

    std::unique_ptr<PasskeyPlatform> m_platform;
    bool m_isBusy = false;
    std::optional<Pin> m_pin;
};

} // namespace orvane
