// SPDX-License-Identifier: GPL-3.0-or-later
#include "SignIn/CallbackSocket.h"
#include "SignIn/ExternalSignIn.h"
#include "support/Await.h"

#include <QTemporaryDir>
#include <algorithm>
#include <future>
#include <gtest/gtest.h>
#include <set>
#include <sys/stat.h>

namespace orvane {
namespace {

using testing::eventually;

TEST(ExternalSignInTest, TiesTheCodeToWhoAskedForIt)
{
    // The example in RFC 7636, appendix B.
    EXPECT_EQ(pkceChallenge("dBjftJeZ4CVP-mB92K27uhbUJU1p1r_wW1gFWFOEjXk"),
              "E9Melhoa2OwvFrEMTJguCHaoeK1t8URWbuGJSstw-cM");
    std::set<std::string> verifiers;
    for (int i = 0; i < 100; ++i) {
        const auto pkce = ExternalSignIn::PKCE::make();
        EXPECT_EQ(pkce.verifier.size(), 43U);
        EXPECT_TRUE(std::ranges::all_of(pkce.verifier, [](char c) {
            return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '-' || c == '_';
        })) << pkce.verifier;
        EXPECT_EQ(pkce.challenge, pkceChallenge(pkce.verifier));
        verifiers.insert(pkce.verifier);
    }
    EXPECT_EQ(verifiers.size(), 100U);
}

TEST(ExternalSignInTest, StartsAtTheServersAddressForTheProvider)
{
    const ExternalSignIn::PKCE pkce{"v", "c-_"};
    EXPECT_EQ(
        ExternalSignIn::startAddress("https://time.example.com", "local", pkce, "Europe/Paris"),
        "https://time.example.com/api/auth/external/local/start?redirectUri=orvane%3A%2F%2Fauth%2Fcallback"
        "&codeChallenge=c-_&timeZone=Europe%2FParis&acceptTerms=true");
    EXPECT_EQ(ExternalSignIn::startAddress("http://h/", "a b/c", pkce, "UTC", "x&y=z +ü"),
              "http://h/api/auth/external/a%20b%2Fc/start?redirectUri=orvane%3A%2F%2Fauth%2Fcallback"
              "&codeChallenge=c-_&timeZone=UTC&acceptTerms=true&invitation=x%26y%3Dz%20%2B%C3%BC");
}

TEST(ExternalSignInTest, ReadsWhatTheBrowserComesBackWith)
{
    using ExternalSignIn::Callback;
    using ExternalSignIn::readCallback;
    EXPECT_EQ(readCallback("orvane://auth/callback?code=a%2Bb"), Callback(ExternalSignIn::Code{"a+b"}));
    EXPECT_EQ(readCallback("orvane://auth/callback?error=cancelled&code=x"),
              Callback(ExternalSignIn::Code{"x"}));
    EXPECT_EQ(readCallback("orvane://auth/callback?error=cancelled"), Callback(ExternalSignIn::Cancelled{}));
    EXPECT_EQ(readCallback("orvane://auth/callback?error=denied"),
              Callback(ExternalSignIn::Failed{"denied"}));
    EXPECT_EQ(readCallback("orvane://auth/callback"), Callback(ExternalSignIn::Failed{""}));
    for (const char *other :
         {"orvane://auth/other?code=x", "orvane://other/callback?code=x", "https://auth/callback?code=x",
          "orvane:auth/callback?code=x", "orvane://auth/callback/?code=x", "", "code=x"})
        EXPECT_EQ(readCallback(other), std::nullopt) << other;
}

TEST(CallbackSocketTest, HandsAnAddressToWhoWaitsLast)
{
    const QTemporaryDir home;
    const std::string folder = home.path().toStdString() + "/deep/sign-in";
    const std::string address = "orvane://auth/callback?code=abc";
    EXPECT_FALSE(CallbackSocket::deliver(folder, address)) << "nobody waits";
    const CallbackSocket earlier(folder);
    const CallbackSocket socket(folder);
    ASSERT_TRUE(socket.isListening());
    struct stat info{};
    ASSERT_EQ(::stat(folder.c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777U, 0700U);
    QStringList arrived;
    QObject::connect(&socket, &CallbackSocket::arrived, [&](const QString &text) { arrived << text; });
    QObject::connect(&earlier, &CallbackSocket::arrived, [](const QString &) { ADD_FAILURE(); });
    const auto deliver = [&](const std::string &text) {
        auto delivery = std::async(std::launch::async, [&] { return CallbackSocket::deliver(folder, text); });
        (void)eventually(
            [&] { return delivery.wait_for(std::chrono::seconds{0}) == std::future_status::ready; });
        return delivery.get();
    };
    EXPECT_TRUE(deliver(address));
    EXPECT_EQ(arrived, QStringList(QString::fromStdString(address)));
    EXPECT_FALSE(deliver(std::string(5000, 'x')));
    EXPECT_FALSE(deliver("two\nlines"));
    ::chmod(folder.c_str(), 0777);
    EXPECT_FALSE(deliver(address)) << "somebody else may listen there";
}

} // namespace
} // namespace orvane
