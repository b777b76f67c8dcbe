// SPDX-License-Identifier: GPL-3.0-or-later
// Whatever a passkey's keeper writes: it is read within its bounds, a new passkey is one that signatures can
// be checked by, and nobody is signed in by bytes that no key has signed.
#include "Passkeys/PasskeyChecks.h"
#include "Security/RandomText.h"
#include "Support/Require.h"

#include <cstdint>
#include <string>

using namespace orvane;
using namespace orvane::server;

namespace {

const PasskeyQuestion question{{"https://orvane.example", "orvane.example"}, "AAEC"};

std::string clientData(const char *type)
{
    return std::string(R"({"type":")") + type + R"(","challenge":"AAEC","origin":"https://orvane.example"})";
}

void checkNewPasskey(const std::string &bytes)
{
    const auto object = readAttestationObject(bytes);
    const auto data = object ? readAuthenticatorData(object->authenticatorData) : std::nullopt;
    const std::string id = data && data->passkey ? data->passkey->id : std::string();
    const auto made =
        createdPasskey(R"({"rawId":")" + base64UrlText(id) + R"(","type":"public-key","response":)" +
                           R"({"clientDataJSON":")" + base64UrlText(clientData("webauthn.create")) +
                           R"(","attestationObject":")" + base64UrlText(bytes) + R"("}})",
                       question);
    if (!made)
        return;
    ORVANE_REQUIRE(data && data->isUserPresent && data->isUserVerified, "made by nobody in particular");
    ORVANE_REQUIRE(!made->id.empty() && made->publicKey.size() == 65, "no passkey");
}

void checkSignature(const std::string &bytes)
{
    const std::size_t half = bytes.size() / 2;
    const PasskeySignature answer{.id = "i",
                                  .clientData = clientData("webauthn.get"),
                                  .authenticatorData = bytes.substr(0, half),
                                  .signature = bytes.substr(half),
                                  .userHandle = "u"};
    // The base point of the curve, whose secret half is 1: nobody keeps a passkey by it.
    const auto coordinate = [](const char *text) { return fromBase64UrlText(text).value_or(""); };
    const PasskeyPoint point = '\4' + coordinate("axfR8uEsQkf4vOblY6RA8ncDfYEt6zOg9KE5RdiYwpY") +
                               coordinate("T-NC4v4af5uO5-tKfA-eFivOM1drMV7Oy7ZAaDe_UfU");
    ORVANE_REQUIRE(!checkedCounter(answer, question, point, 0), "signed by nobody");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string bytes(reinterpret_cast<const char *>(data), size);
    checkNewPasskey(bytes);
    checkSignature(bytes);
    (void)readAuthenticatorData(bytes);
    (void)readPasskeySignature(bytes);
    (void)createdPasskey(bytes, question);
    return 0;
}
