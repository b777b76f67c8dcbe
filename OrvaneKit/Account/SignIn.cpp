// SPDX-License-Identifier: GPL-3.0-or-later
#include "Account/SignIn.h"

#include "Session/AuthSession.h"
#include "Time/SystemZone.h"

namespace orvane {

namespace {

Task<CallResult<void>> signInWith(PasswordSignIn way, std::shared_ptr<AuthSession> session)
{
    return session->login(std::move(way.email), std::move(way.password));
}

Task<CallResult<void>> signInWith(Registration way, std::shared_ptr<AuthSession> session)
{
    RegisterRequest request;
    request.email = std::move(way.email);
    request.password = std::move(way.password);
    if (auto zone = systemZone())
        request.timeZone = std::move(*zone);
    return session->registerAccount(std::move(request));
}

Task<CallResult<void>> signInWith(CodeSignIn way, std::shared_ptr<AuthSession> session)
{
    const auto isNew = co_await session->exchangeExternalSignIn(std::move(way.code), std::move(way.verifier));
    if (!isNew)
        co_return failure(isNew.error());
    co_return CallResult<void>();
}

Task<CallResult<void>> signInWith(PasskeySignIn way, std::shared_ptr<AuthSession> session)
{
    NativePasskeyLoginRequest request;
    request.challengeToken = std::move(way.challengeToken);
    request.credential.text = std::move(way.credential);
    return session->passkeyLogin(std::move(request));
}

} // namespace

Task<CallResult<void>> signIn(SignIn way, std::shared_ptr<AuthSession> session)
{
    return std::visit([&](auto &one) { return signInWith(std::move(one), std::move(session)); }, way);
}

} // namespace orvane
