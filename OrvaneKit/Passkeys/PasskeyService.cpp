// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyService.h"

#include "Support/Require.h"

#include <QPointer>

namespace orvane {

namespace {

template <class T>
PasskeyService::Answer answerOf(const Result<T, PasskeyError> &answer, const std::string &clientData)
{
    if (!answer)
        return failure(PasskeyError(answer.error()));
    return passkeyCredentialJson(*answer, clientData);
}

Task<std::optional<std::string>> typed(Eventual<std::optional<std::string>> pin)
{
    co_return co_await std::move(pin);
}

Task<std::optional<std::string>> nobodyTypes()
{
    co_return std::nullopt;
}

} // namespace

PasskeyService::PasskeyService(std::unique_ptr<PasskeyPlatform> platform) : m_platform(std::move(platform))
{
    ORVANE_REQUIRE(m_platform, "there is always a platform, if only one that has no passkeys");
}

PasskeyService::~PasskeyService()
{
    cancel();
}

/// The origin to ask with.
std::optional<std::string> PasskeyService::mayAsk(const std::string &server, const std::string &rpId) const
{
    return isRelyingParty(rpId, server) ? passkeyOrigin(server) : std::nullopt;
}

Task<PasskeyService::Answer> PasskeyService::assertion(std::string server, PasskeyAssertionOptions options)
{
    const QPointer<PasskeyService> self(this);
    if (m_isBusy)
        co_return failure(PasskeyError::busy);
    const auto origin = mayAsk(server, options.rpId);
    if (!origin)
        co_return failure(PasskeyError::invalidOptions);
    m_isBusy = true;
    const std::string data = passkeyClientData(PasskeyRequest::assertion, options.challenge, *origin);
    const auto answer = co_await m_platform->assertion(std::move(options), data, prompts());
    if (self)
        m_isBusy = false;
    co_return answerOf(answer, data);
}

Task<PasskeyService::Answer> PasskeyService::registration(std::string server,
                                                          PasskeyRegistrationOptions options)
{
    const QPointer<PasskeyService> self(this);
    if (m_isBusy)
        co_return failure(PasskeyError::busy);
    const auto origin = mayAsk(server, options.rp.id);
    if (!origin)
        co_return failure(PasskeyError::invalidOptions);
    m_isBusy = true;
    const std::string data = passkeyClientData(PasskeyRequest::registration, options.challenge, *origin);
    const auto answer = co_await m_platform->registration(std::move(options), data, prompts());
    if (self)
        m_isBusy = false;
    co_return answerOf(answer, data);
}

PasskeyPrompts PasskeyService::prompts()
{
    const QPointer<PasskeyService> self(this);
    return {
        .pin = [self](std::optional<int> left) { return self ? typed(self->askPin(left)) : nobodyTypes(); },
        .touch =
            [self] {
                if (self)
                    Q_EMIT self->touchWanted();
            }};
}

PasskeyService::Pin PasskeyService::askPin(std::optional<int> triesLeft)
{
    m_pin = Pin(ResumeWaiters::fromTheirLoops);
    const Pin pin = *m_pin;
    Q_EMIT pinWanted(triesLeft.value_or(-1));
    return pin;
}

void PasskeyService::givePin(std::string pin)
{
    if (const auto asked = std::exchange(m_pin, std::nullopt))
        asked->finish(std::move(pin));
}

void PasskeyService::cancel()
{
    if (const auto asked = std::exchange(m_pin, std::nullopt))
        asked->finish(std::nullopt);
    if (m_isBusy)
        m_platform->cancel();
}

} // namespace orvane
