// SPDX-License-Identifier: GPL-3.0-or-later
// A passkey from its making to its end: the real server behind TLS, the real client, and a security key.
#include "Account/SignIn.h"
#include "Client/OrvaneClient.h"
#include "Http/NetworkThread.h"
#include "Passkeys/PasskeyService.h"
#include "Passkeys/linux/SecurityKeys.h"
#include "Session/AuthSession.h"
#include "Session/MemoryTokenStore.h"
#include "support/Await.h"
#include "support/HostedServer.h"
#include "support/SoftwareKey.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using testing::await;

class PasskeyJourney : public ::testing::Test {
protected:
    PasskeyJourney()
    {
        QObject::connect(&passkeys, &PasskeyService::pinWanted, &passkeys,
                         [this] { passkeys.givePin("123456"); });
    }

    std::shared_ptr<OrvaneClient> newDevice()
    {
        AuthSessionOptions options{.server = server.address(),
                                   .tokenStore = std::make_shared<MemoryTokenStore>(),
                                   .deviceName = "test"};
        return std::make_shared<OrvaneClient>(network, AuthSession::make(*network, std::move(options)));
    }

    /// The saved passkey's identifier.
    std::string addPasskey(OrvaneClient &client)
    {
        const auto asked = await(client.passkeyCreationOptions({"a good password"}));
        EXPECT_TRUE(asked) << (asked ? "" : describe(asked.error()));
        const auto options = readRegistrationOptions(asked ? asked->options.text : "");
        EXPECT_TRUE(options);
        if (!options)
            return {};
        const auto made = await(passkeys.registration(server.address(), *options));
        EXPECT_TRUE(made) << (made ? "" : describe(made.error()));
        const auto saved =
            await(client.savePasskey({"Blue key", asked->challengeToken, {made.value_or("{}")}}));
        EXPECT_TRUE(saved) << (saved ? "" : describe(saved.error()));
        return saved ? saved->id : std::string();
    }

    CallResult<void> signInWithPasskey(const std::shared_ptr<AuthSession> &session)
    {
        const auto asked = await(session->passkeyOptions());
        if (!asked)
            return failure(CallError(asked.error()));
        const auto options = readAssertionOptions(*asked);
        EXPECT_TRUE(options);
        const auto answer = await(passkeys.assertion(session->server(), *options));
        EXPECT_TRUE(answer) << (answer ? "" : describe(answer.error()));
        return await(signIn(PasskeySignIn{asked->challengeToken, answer.value_or("{}")}, session));
    }

    testing::HostedServer server;
    std::shared_ptr<NetworkThread> network = std::make_shared<NetworkThread>();
    testing::SoftwareKey key;
    PasskeyService passkeys{std::make_unique<SecurityKeys>([this] {
        std::vector<SecurityKey> found;
        found.emplace_back(key.open());
        return found;
    })};
};

TEST_F(PasskeyJourney, FromThePasswordToTheKeyAndBack)
{
    const auto first = newDevice();
    EXPECT_TRUE(await(first->session()->getServer()).value_or(ServerResponse{}).hosted);
    ASSERT_TRUE(await(signIn(Registration{"grace@example.org", "a good password"}, first->session())));
    const std::string id = addPasskey(*first);
    ASSERT_TRUE(await(first->session()->signOut()));

    const auto second = newDevice();
    const auto signedIn = signInWithPasskey(second->session());
    ASSERT_TRUE(signedIn) << describe(signedIn.error());
    const auto me = await(second->getMe());
    ASSERT_TRUE(me);
    EXPECT_EQ(me->email, "grace@example.org");
    const auto listed = await(second->listPasskeys());
    ASSERT_TRUE(listed && listed->size() == 1);
    EXPECT_EQ(listed->front().name, "Blue key");
    EXPECT_TRUE(listed->front().lastUsedAt);

    ASSERT_TRUE(await(second->removePasskey(id)));
    const auto refused = signInWithPasskey(newDevice()->session());
    ASSERT_FALSE(refused);
    const auto *error = std::get_if<APIError>(&refused.error());
    ASSERT_NE(error, nullptr) << describe(refused.error());
    EXPECT_EQ(error->status, 401);
}

} // namespace
} // namespace orvane
