// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyCredential.h"

#include "Passkeys/PasskeyOptions.h"
#include "Support/JsonImpl.h"

namespace orvane {

// What WebAuthn says that is written, member by member.

struct ClientDataJson {
    std::string type;
    std::string challenge;
    std::string origin;
    bool crossOrigin = false;
};

struct AssertionResponseJson {
    std::string clientDataJSON;
    std::string authenticatorData;
    std::string signature;
    std::string userHandle;
};

struct AttestationResponseJson {
    std::string clientDataJSON;
    std::string attestationObject;
    std::vector<std::string> transports;
};

/// No extension is asked for.
struct ExtensionResultsJson {
    std::optional<bool> none;
};

template <class Response>
struct PublicKeyCredentialJson {
    std::string id;
    std::string rawId;
    std::string type = "public-key";
    std::string authenticatorAttachment = "platform";
    Response response;
    ExtensionResultsJson clientExtensionResults;
};
using AssertionCredentialJson = PublicKeyCredentialJson<AssertionResponseJson>;
using AttestationCredentialJson = PublicKeyCredentialJson<AttestationResponseJson>;

template <>
struct JsonFields<ClientDataJson> {
    static constexpr auto list = JsonFieldList{
        jsonField<"type">(&ClientDataJson::type), jsonField<"challenge">(&ClientDataJson::challenge),
        jsonField<"origin">(&ClientDataJson::origin), jsonField<"crossOrigin">(&ClientDataJson::crossOrigin)};
};
template <>
struct JsonFields<AssertionResponseJson> {
    static constexpr auto list =
        JsonFieldList{jsonField<"clientDataJSON">(&AssertionResponseJson::clientDataJSON),
                      jsonField<"authenticatorData">(&AssertionResponseJson::authenticatorData),
                      jsonField<"signature">(&AssertionResponseJson::signature),
                      jsonField<"userHandle">(&AssertionResponseJson::userHandle)};
};
template <>
struct JsonFields<AttestationResponseJson> {
    static constexpr auto list =
        JsonFieldList{jsonField<"clientDataJSON">(&AttestationResponseJson::clientDataJSON),
                      jsonField<"attestationObject">(&AttestationResponseJson::attestationObject),
                      jsonField<"transports">(&AttestationResponseJson::transports)};
};
template <>
struct JsonFields<ExtensionResultsJson> {
    static constexpr auto list = JsonFieldList{jsonField<"none">(&ExtensionResultsJson::none)};
};
template <class Response>
struct JsonFields<PublicKeyCredentialJson<Response>> {
    using Credential = PublicKeyCredentialJson<Response>;
    static constexpr auto list =
        JsonFieldList{jsonField<"id">(&Credential::id),
                      jsonField<"rawId">(&Credential::rawId),
                      jsonField<"type">(&Credential::type),
                      jsonField<"authenticatorAttachment">(&Credential::authenticatorAttachment),
                      jsonField<"response">(&Credential::response),
                      jsonField<"clientExtensionResults">(&Credential::clientExtensionResults)};
};

} // namespace orvane

ORVANE_JSON(orvane::ClientDataJson)
ORVANE_JSON(orvane::AssertionCredentialJson)
ORVANE_JSON(orvane::AttestationCredentialJson)

namespace orvane {

namespace {

template <class Response>
std::string credentialJson(const std::string &credentialId, Response response)
{
    PublicKeyCredentialJson<Response> credential;
    credential.id = credential.rawId = base64UrlOf(credentialId);
    credential.response = std::move(response);
    return encodeJson(credential);
}

} // namespace

std::string passkeyClientData(PasskeyRequest request, const std::string &challenge, const std::string &origin)
{
    ClientDataJson data;
    data.type = request == PasskeyRequest::assertion ? "webauthn.get" : "webauthn.create";
    data.challenge = base64UrlOf(challenge);
    data.origin = origin;
    return encodeJson(data);
}

std::string passkeyCredentialJson(const PasskeyAssertion &answer, const std::string &clientData)
{
    return credentialJson(answer.credentialId,
                          AssertionResponseJson{.clientDataJSON = base64UrlOf(clientData),
                                                .authenticatorData = base64UrlOf(answer.authenticatorData),
                                                .signature = base64UrlOf(answer.signature),
                                                .userHandle = base64UrlOf(answer.userHandle)});
}

std::string passkeyCredentialJson(const PasskeyAttestation &answer, const std::string &clientData)
{
    return credentialJson(answer.credentialId,
                          AttestationResponseJson{.clientDataJSON = base64UrlOf(clientData),
                                                  .attestationObject = base64UrlOf(answer.attestationObject),
                                                  .transports = answer.transports});
}

} // namespace orvane
