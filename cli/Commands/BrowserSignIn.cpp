// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/BrowserSignIn.h"

#include "Commands/OpenInBrowser.h"
#include "Input/CallbackInput.h"
#include "SignIn/ExternalSignIn.h"
#include "Terminal/StandardStreams.h"
#include "Terminal/TextWidth.h"
#include "Time/SystemZone.h"

#include <algorithm>

namespace orvane {

namespace {

/// Why the provider cannot be used; none when it can.
std::optional<CommandFailure> providerProblem(const ServerResponse &server, const std::string &provider)
{
    const auto &providers = server.signInProviders;
    if (std::ranges::find(providers, provider, &SignInProviderResponse::name) != providers.end())
        return std::nullopt;
    std::string names;
    for (const SignInProviderResponse &each : providers)
        names += (names.empty() ? "" : ", ") + printable(each.name);
    return CommandFailure::of("It has no sign-in with " + printable(provider) + "." +
                              (names.empty() ? " Sign in with --email." : " There is: " + names + "."));
}

void sayWhatToDo(const ServerResponse &server, const std::string &start, bool isOpened)
{
    if (server.termsUrl)
        writeMessage("By signing in you accept the terms: " + printable(*server.termsUrl));
    writeMessage((isOpened ? "Your browser opens: " : "Open in your browser: ") + start);
    writeMessage(
        "If it does not come back here by itself, paste the address that it ends at, and press Return:");
}

} // namespace

Task<Result<Account *, CommandFailure>> signInWithBrowser(Context context, ServerResponse server,
                                                          std::string address, std::string provider)
{
    if (auto problem = providerProblem(server, provider))
        co_return failure(std::move(*problem));
    const ExternalSignIn::PKCE pkce = ExternalSignIn::PKCE::make();
    const std::string start =
        ExternalSignIn::startAddress(address, provider, pkce, systemZone().value_or(std::string()));
    CallbackInput input(CallbackSocket::usualFolder());
    const bool isOpened = openInBrowser(start);
    if (!isOpened && context->json())
        co_return failure(CommandFailure::of(
            "There is no browser here to sign in with; without --json, its address is shown."));
    sayWhatToDo(server, start, isOpened);
    while (const auto arrived = co_await input.next()) {
        const auto callback = ExternalSignIn::readCallback(*arrived);
        if (!callback) {
            writeMessage("That is not it: the address begins with " +
                         std::string(ExternalSignIn::callbackAddress) + ".");
            continue;
        }
        const auto *code = std::get_if<ExternalSignIn::Code>(&*callback);
        if (code == nullptr)
            break;
        auto opened = co_await context->signIn(CodeSignIn{code->value, pkce.verifier});
        // One that the server does not take was of another attempt, or mistyped: this one is still open.
        if (opened || opened.error().status != 400)
            co_return std::move(opened);
        writeMessage(opened.error().message);
    }
    co_return failure(CommandFailure::of(describe(ExternalSignInError::failed)));
}

} // namespace orvane
