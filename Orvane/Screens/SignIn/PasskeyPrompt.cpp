// SPDX-License-Identifier: GPL-3.0-or-later
#include "Screens/SignIn/PasskeyPrompt.h"

#include <QPointer>

namespace orvane {

PasskeyPrompt::PasskeyPrompt(std::unique_ptr<PasskeyPlatform> platform) : m_service(std::move(platform))
{
    connect(&m_service, &PasskeyService::pinWanted, this, [this](int left) { setStep(Step::pin, left); });
    connect(&m_service, &PasskeyService::touchWanted, this, [this] { setStep(Step::touch); });
}

QString PasskeyPrompt::sentence() const
{
    switch (m_step) {
    case Step::none:
        return {};
    case Step::waiting:
        return tr("Looking for your security key…");
    case Step::pin:
        if (m_triesLeft < 0)
            return tr("Type the PIN of your security key.");
        return m_triesLeft == 1 ? tr("This is not its PIN. 1 try is left.")
                                : tr("This is not its PIN. %1 tries are left.").arg(m_triesLeft);
    case Step::touch:
        return tr("Touch your security key.");
    }
    return {};
}

Task<PasskeyService::Answer> PasskeyPrompt::assertion(std::string server, PasskeyAssertionOptions options)
{
    setStep(Step::waiting);
    return watch(m_service.assertion(std::move(server), std::move(options)));
}

Task<PasskeyService::Answer> PasskeyPrompt::registration(std::string server,
                                                         PasskeyRegistrationOptions options)
{
    setStep(Step::waiting);
    return watch(m_service.registration(std::move(server), std::move(options)));
}

Task<PasskeyService::Answer> PasskeyPrompt::watch(Task<PasskeyService::Answer> request)
{
    const QPointer<PasskeyPrompt> self(this);
    auto answer = co_await request;
    if (self)
        setStep(Step::none);
    co_return std::move(answer);
}

void PasskeyPrompt::givePin(const QString &pin)
{
    if (!wantsPin() || pin.isEmpty())
        return;
    setStep(Step::waiting);
    m_service.givePin(pin.toStdString());
}

void PasskeyPrompt::cancel()
{
    m_service.cancel();
}

void PasskeyPrompt::setStep(Step step, int triesLeft)
{
    m_step = step;
    m_triesLeft = triesLeft;
    Q_EMIT changed();
}

} // namespace orvane
