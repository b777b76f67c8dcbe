// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyCredential.h"
#include "Passkeys/PasskeyOptions.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

NativePasskeyOptionsResponse toSignIn(std::string challenge, std::string rpId = "orvane.example")
{
    NativePasskeyOptionsResponse options;
    options.challenge = std::move(challenge);
    options.rpId = std::move(rpId);
    return options;
}

TEST(PasskeyOptionsTest, TakesBase64UrlAsItIsWrittenAndNothingElse)
{
    EXPECT_EQ(fromBase64Url("-_8"), std::string("\xfb\xff"));
    EXPECT_EQ(fromBase64Url(""), "");
    const std::string bytes("\0\xff\x10", 3);
    EXPECT_EQ(fromBase64Url(base64UrlOf(bytes)), bytes);
    // Padding, the other alphabet, bits over, white space, a length that no bytes have.
    for (const char *wrong : {"-_8=", "+/8", "-_9", "-_ 8", "-_8\n", "A", "AAAAA", "ä"})
        EXPECT_EQ(fromBase64Url(wrong), std::nullopt) << wrong;
}

TEST(PasskeyOptionsTest, ReadsWhatIsAskedForSigningIn)
{
    const auto read = readAssertionOptions(toSignIn("AAEC"));
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, (PasskeyAssertionOptions{std::string("\0\1\2", 3), "orvane.example"}));
    for (const auto &wrong : {toSignIn(""), toSignIn("AAEC="), toSignIn("AAEC", "")}) {
        const auto refused = readAssertionOptions(wrong);
        ASSERT_FALSE(refused);
        EXPECT_EQ(refused.error(), PasskeyError::invalidOptions);
    }
}

TEST(PasskeyOptionsTest, ReadsWhatIsAskedForANewPasskey)
{
    const std::string whole = R"({"challenge":"AAEC","rp":{"id":"orvane.example","name":"Orvane"},)"
                              R"("user":{"id":"dQ","name":"ada@example.org","displayName":"Ada"},)"
                              R"("pubKeyCredParams":[{"type":"public-key","alg":-7}],)"
                              R"("excludeCredentials":[{"type":"public-key","id":"eA"}],"timeout":60000})";
    const auto read = readRegistrationOptions(whole);
    ASSERT_TRUE(read);
    EXPECT_EQ(*read,
              (PasskeyRegistrationOptions{
                  std::string("\0\1\2", 3), {"orvane.example", "Orvane"}, {"u", "ada@example.org"}, {"x"}}));
    const auto changed = [&](const std::string &part, const std::string &to) {
        std::string text = whole;
        return text.replace(text.find(part), part.size(), to);
    };
    const std::string longId = base64UrlOf(std::string(65, 'u'));
    for (const std::string &wrong :
         {std::string(), std::string("null"), std::string("{}"), changed("AAEC", "A"), changed("AAEC", ""),
          changed(R"("challenge":"AAEC",)", ""), changed("\"dQ\"", "7"), changed("dQ", ""),
          changed("dQ", "dQ=="), changed("dQ", longId), changed(R"("id":"orvane.example")", R"("id":"")"),
          changed("eA", "*")}) {
        const auto refused = readRegistrationOptions(wrong);
        ASSERT_FALSE(refused) << wrong;
        EXPECT_EQ(refused.error(), PasskeyError::invalidOptions);
    }
}

TEST(PasskeyOptionsTest, AServerAsksForThePasskeysOfItsOwnNameAlone)
{
    EXPECT_TRUE(isRelyingParty("orvane.example", "https://orvane.example"));
    EXPECT_TRUE(isRelyingParty("team.example.co.uk", "https://track.team.example.co.uk:8443/"));
    EXPECT_TRUE(isRelyingParty("example.co.uk", "https://track.team.example.co.uk"));
    EXPECT_TRUE(isRelyingParty("localhost", "https://localhost:8443"));
    // Of strangers: a sibling, a child, everybody's parent, part of a word.
    EXPECT_FALSE(isRelyingParty("other.example", "https://orvane.example"));
    EXPECT_FALSE(isRelyingParty("track.orvane.example", "https://orvane.example"));
    EXPECT_FALSE(isRelyingParty("co.uk", "https://track.example.co.uk"));
    EXPECT_FALSE(isRelyingParty("uk", "https://track.example.co.uk"));
    EXPECT_FALSE(isRelyingParty("github.io", "https://orvane.github.io"));
    EXPECT_FALSE(isRelyingParty("vane.example", "https://orvane.example"));
    EXPECT_FALSE(isRelyingParty("Orvane.example", "https://orvane.example"));
    EXPECT_FALSE(isRelyingParty("", "https://orvane.example"));
    // Without TLS anybody on the way could ask; a number is nobody's name.
    EXPECT_FALSE(isRelyingParty("orvane.example", "http://orvane.example"));
    EXPECT_FALSE(isRelyingParty("127.0.0.1", "https://127.0.0.1:8443"));
    EXPECT_FALSE(isRelyingParty("[::1]", "https://[::1]:8443"));
}

TEST(PasskeyOptionsTest, WhatIsSignedNamesTheServer)
{
    EXPECT_EQ(passkeyOrigin("https://Orvane.example/"), "https://orvane.example");
    EXPECT_EQ(passkeyOrigin("https://orvane.example:443"), "https://orvane.example");
    EXPECT_EQ(passkeyOrigin("https://bücher.example:8443/api"), "https://xn--bcher-kva.example:8443");
    EXPECT_EQ(passkeyOrigin("http://orvane.example"), std::nullopt);
    EXPECT_EQ(
        passkeyClientData(PasskeyRequest::assertion, "\xfb\xff", "https://orvane.example"),
        R"({"type":"webauthn.get","challenge":"-_8","origin":"https://orvane.example","crossOrigin":false})");
}

TEST(PasskeyOptionsTest, AnswersInTheFormOfWebAuthn)
{
    EXPECT_EQ(passkeyCredentialJson(PasskeyAssertion{"i", "a", "s", "u"}, "d"),
              R"({"id":"aQ","rawId":"aQ","type":"public-key","authenticatorAttachment":"platform",)"
              R"("response":{"clientDataJSON":"ZA","authenticatorData":"YQ","signature":"cw",)"
              R"("userHandle":"dQ"},"clientExtensionResults":{}})");
    EXPECT_EQ(passkeyCredentialJson(PasskeyAttestation{"i", "o", {"usb"}}, "d"),
              R"({"id":"aQ","rawId":"aQ","type":"public-key","authenticatorAttachment":"platform",)"
              R"("response":{"clientDataJSON":"ZA","attestationObject":"bw","transports":["usb"]},)"
              R"("clientExtensionResults":{}})");
}

} // namespace
} // namespace orvane
