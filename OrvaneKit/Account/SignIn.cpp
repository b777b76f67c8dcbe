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

} // namespace

Task<CallResult<void>> signIn(SignIn way, std::shared_ptr<AuthSession> session)
{
    return std::visit([&](auto &one) { return signInWith(std::move(one), std::move(session)); }, way);
}

} // namespace orvane
