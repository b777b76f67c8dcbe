// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Passkeys/PasskeyService.h"

#include <QObject>

namespace orvane {

/// What a passkey wants of its user while a request is under way: to be there, a PIN, a touch. Who begins the
/// request does that with the service.
///
/// Owner: the model of the screen that asks. Thread: the main thread.
class PasskeyPrompt final : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(bool wantsPin READ wantsPin NOTIFY changed)
    /// What is to be done now; empty when nothing is under way.
    Q_PROPERTY(QString sentence READ sentence NOTIFY changed)
    /// The sentence is about a mistake.
    Q_PROPERTY(bool isWrong READ isWrong NOTIFY changed)

public:
    explicit PasskeyPrompt(std::unique_ptr<PasskeyPlatform> platform);

    bool isOpen() const { return m_step != Step::none; }
    bool wantsPin() const { return m_step == Step::pin; }
    QString sentence() const;
    bool isWrong() const { return wantsPin() && m_triesLeft >= 0; }

    Task<PasskeyService::Answer> assertion(std::string server, PasskeyAssertionOptions options);
    Task<PasskeyService::Answer> registration(std::string server, PasskeyRegistrationOptions options);

    Q_INVOKABLE void givePin(const QString &pin);
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();

private:
    enum class Step { none, waiting, pin, touch };

    Task<PasskeyService::Answer> watch(Task<PasskeyService::Answer> request);
    void setStep(Step step, int triesLeft = -1);

    PasskeyService m_service;
    Step m_step = Step::none;
    int m_triesLeft = -1;
};

} // namespace orvane
