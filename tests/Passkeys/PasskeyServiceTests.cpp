// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyService.h"
#include "Passkeys/linux/SecurityKeys.h"
#include "support/Await.h"
#include "support/ManualRetryTimer.h"
#include "support/SoftwareKey.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

using namespace std::chrono_literals;
using testing::await;
using testing::eventually;
using testing::SoftwareKey;

const std::string server = "https://orvane.example";

using Kept = std::shared_ptr<std::optional<PasskeyService::Answer>>;
Task<> keep(Task<PasskeyService::Answer> request, Kept answer)
{
    *answer = co_await request;
}

/// The whole way from the server's options to the key's frames, with somebody who types what `pins` holds.
class PasskeyServiceTest : public ::testing::Test {
protected:
    void plugIn(const std::vector<SoftwareKey *> &keys)
    {
        auto timer = std::make_unique<ManualRetryTimer>();
        retries = timer.get();
        const auto find = [keys] {
            std::vector<SecurityKey> found;
            for (SoftwareKey *key : keys)
                found.emplace_back(key->open());
            return found;
        };
        service = std::make_unique<PasskeyService>(std::make_unique<SecurityKeys>(find, std::move(timer)));
        QObject::connect(service.get(), &PasskeyService::pinWanted, service.get(), [this](int left) {
            triesLeft.push_back(left);
            if (pins.empty())
                return service->cancel();
            service->givePin(pins.front());
            pins.erase(pins.begin());
        });
        QObject::connect(service.get(), &PasskeyService::touchWanted, service.get(), [this] { ++touches; });
    }

    PasskeyService::Answer makePasskey(const std::string &user, std::vector<std::string> excluded = {})
    {
        return await(service->registration(server, {.challenge = "challenge",
                                                    .rp = {"orvane.example", "Orvane"},
                                                    .user = {user, user + "@example.org"},
                                                    .excludedIds = std::move(excluded)}));
    }
    PasskeyService::Answer signIn()
    {
        return await(service->assertion(server, {"challenge", "orvane.example"}));
    }
    static PasskeyError errorOf(const PasskeyService::Answer &answer)
    {
        EXPECT_FALSE(answer);
        return answer ? PasskeyError{} : answer.error();
    }
    static std::string valueIn(const PasskeyService::Answer &answer, const std::string &name)
    {
        const std::string text = answer.value_or("");
        const std::string before = '"' + name + "\":\"";
        const std::size_t at = text.find(before);
        if (at == std::string::npos)
            return "nothing";
        const std::size_t begin = at + before.size();
        return text.substr(begin, text.find('"', begin) - begin);
    }

    std::unique_ptr<PasskeyService> service;
    ManualRetryTimer *retries = nullptr;
    std::vector<std::string> pins{"123456", "123456"};
    std::vector<int> triesLeft;
    int touches = 0;
};

TEST_F(PasskeyServiceTest, MakesAPasskeyAndSignsInWithIt)
{
    for (const int protocol : {1, 2}) {
        SoftwareKey key({.pinProtocol = protocol});
        pins = {"123456", "123456"};
        plugIn({&key});
        const auto made = makePasskey("ada");
        ASSERT_TRUE(made) << describe(made.error());
        EXPECT_EQ(key.passkeyCount(), 1U);
        EXPECT_EQ(made->find("packed"), std::string::npos) << "it tells nothing of its maker";
        const auto signedIn = signIn();
        ASSERT_TRUE(signedIn) << describe(signedIn.error());
        EXPECT_EQ(valueIn(signedIn, "rawId"), valueIn(made, "rawId"));
        EXPECT_EQ(valueIn(signedIn, "userHandle"), base64UrlOf("ada"));
        EXPECT_EQ(touches, 2 * protocol);
        EXPECT_TRUE(pins.empty());
    }
}

TEST_F(PasskeyServiceTest, AsksForThePinUntilItIsRightOrTheKeyIsBlocked)
{
    SoftwareKey key;
    plugIn({&key});
    pins = {"wrong", "123456"};
    EXPECT_TRUE(makePasskey("ada"));
    EXPECT_EQ(triesLeft, (std::vector{-1, 7}));
    key.pinTriesLeft = 1;
    pins = {"wrong", "123456"};
    EXPECT_EQ(errorOf(signIn()), PasskeyError::unavailable);
    EXPECT_EQ(pins.size(), 1U);
}

TEST_F(PasskeyServiceTest, AKeyWithASensorNeedsNoPin)
{
    SoftwareKey key({.pin = {}, .hasSensor = true});
    plugIn({&key});
    EXPECT_TRUE(makePasskey("ada"));
    EXPECT_TRUE(signIn());
    EXPECT_TRUE(triesLeft.empty());
}

TEST_F(PasskeyServiceTest, TakesTheKeyThatHasThePasskey)
{
    SoftwareKey withoutPin({.pin = {}});
    SoftwareKey empty;
    SoftwareKey full;
    plugIn({&full});
    EXPECT_TRUE(makePasskey("ada"));
    plugIn({&withoutPin, &empty, &full});
    pins = {"123456", "123456"};
    EXPECT_EQ(valueIn(signIn(), "userHandle"), base64UrlOf("ada"));
}

TEST_F(PasskeyServiceTest, ComesToNothingWhereNoKeyCanAnswer)
{
    plugIn({});
    EXPECT_EQ(errorOf(signIn()), PasskeyError::unavailable);
    SoftwareKey withoutPin({.pin = {}});
    plugIn({&withoutPin});
    EXPECT_EQ(errorOf(makePasskey("ada")), PasskeyError::unavailable);
    SoftwareKey key;
    plugIn({&key});
    EXPECT_EQ(errorOf(signIn()), PasskeyError::unavailable) << "it has no passkey of this server";
    pins = {"123456", "123456"};
    const auto made = makePasskey("ada");
    const auto id = fromBase64Url(valueIn(made, "rawId"));
    ASSERT_TRUE(id);
    EXPECT_EQ(errorOf(makePasskey("ada", {*id})), PasskeyError::unavailable) << "the account has this one";
    EXPECT_EQ(key.passkeyCount(), 1U);
}

TEST_F(PasskeyServiceTest, AsksNoKeyForAnotherServersPasskeys)
{
    SoftwareKey key;
    plugIn({&key});
    EXPECT_EQ(errorOf(await(service->assertion("https://evil.example", {"c", "orvane.example"}))),
              PasskeyError::invalidOptions);
    EXPECT_EQ(errorOf(await(service->assertion("http://orvane.example", {"c", "orvane.example"}))),
              PasskeyError::invalidOptions);
    EXPECT_TRUE(triesLeft.empty());
}

TEST_F(PasskeyServiceTest, OneRequestAtATimeWhichCanBeCancelled)
{
    SoftwareKey key({.isTouchedAtOnce = false});
    plugIn({&key});
    const auto answer = std::make_shared<std::optional<PasskeyService::Answer>>();
    const PasskeyRegistrationOptions options{"c", {"orvane.example", "Orvane"}, {"ada", "Ada"}, {}};
    const auto first = keep(service->registration(server, options), answer);
    ASSERT_TRUE(eventually([&] { return key.isWaiting(); }));
    EXPECT_EQ(errorOf(signIn()), PasskeyError::busy);
    service->cancel();
    ASSERT_TRUE(eventually([&] { return answer->has_value(); }));
    EXPECT_EQ(errorOf(**answer), PasskeyError::cancelled);
    EXPECT_EQ(key.passkeyCount(), 0U);
    EXPECT_FALSE(service->isBusy());
    // A second cry in case the key did not hear the first; it ends with the request.
    EXPECT_TRUE(retries->isScheduled());
    retries->advance(1s);
    EXPECT_FALSE(retries->isScheduled());

    pins = {"123456"};
    answer->reset();
    const auto second = keep(service->registration(server, options), answer);
    ASSERT_TRUE(eventually([&] { return key.isWaiting(); }));
    key.touch();
    ASSERT_TRUE(eventually([&] { return answer->has_value(); }));
    EXPECT_TRUE(**answer);
}

TEST_F(PasskeyServiceTest, EndsWithWhoeverAsked)
{
    SoftwareKey key({.isTouchedAtOnce = false});
    plugIn({&key});
    const auto answer = std::make_shared<std::optional<PasskeyService::Answer>>();
    const auto touched = keep(service->assertion(server, {"c", "orvane.example"}), answer);
    ASSERT_TRUE(eventually([&] { return key.isWaiting(); }));
    service.reset();
    ASSERT_TRUE(eventually([&] { return answer->has_value(); }));
    EXPECT_EQ(errorOf(**answer), PasskeyError::cancelled);

    pins.clear();
    plugIn({&key});
    EXPECT_EQ(errorOf(signIn()), PasskeyError::cancelled) << "nobody types";
}

} // namespace
} // namespace orvane
