// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyChecks.h"

#include "Security/RandomText.h"
#include "Support/JsonImpl.h"

namespace orvane::server {

// The members of WebAuthn's JSON that count here.

struct ClientData {
    std::string type;
    std::string challenge;
    std::string origin;
    bool crossOrigin = false;
};

struct CreationAnswer {
    std::string clientDataJSON;
    std::string attestationObject;
};
struct CreatedCredential {
    std::string rawId;
    std::string type;
    CreationAnswer response;
};

struct SignInAnswer {
    std::string clientDataJSON;
    std::string authenticatorData;
    std::string signature;
    std::string userHandle;
};
struct SignInCredential {
    std::string rawId;
    std::string type;
    SignInAnswer response;
};

struct OptionsParty {
    std::string id;
    std::string name;
};
struct OptionsUser {
    std::string id;
    std::string name;
    std::string displayName;
};
struct OptionsAlgorithm {
    std::string type = "public-key";
    std::int64_t alg = -7; // ES256
};
struct OptionsDescriptor {
    std::string type = "public-key";
    std::string id;
};
struct OptionsSelection {
    std::string residentKey = "required";
    bool requireResidentKey = true;
    std::string userVerification = "required";
};
struct CreationOptions {
    std::string challenge;
    OptionsParty rp;
    OptionsUser user;
    std::vector<OptionsAlgorithm> pubKeyCredParams{OptionsAlgorithm{}};
    std::int64_t timeout = 0;
    std::vector<OptionsDescriptor> excludeCredentials;
    OptionsSelection authenticatorSelection;
    std::string attestation = "none";
};

} // namespace orvane::server

namespace orvane {

template <>
struct JsonFields<server::ClientData> {
    using Type = server::ClientData;
    static constexpr auto list =
        JsonFieldList{jsonField<"type">(&Type::type), jsonField<"challenge">(&Type::challenge),
                      jsonField<"origin">(&Type::origin),
                      jsonField<"crossOrigin">(&Type::crossOrigin, JsonPresence::defaulted)};
};
template <>
struct JsonFields<server::CreationAnswer> {
    using Type = server::CreationAnswer;
    static constexpr auto list = JsonFieldList{jsonField<"clientDataJSON">(&Type::clientDataJSON),
                                               jsonField<"attestationObject">(&Type::attestationObject)};
};
template <>
struct JsonFields<server::CreatedCredential> {
    using Type = server::CreatedCredential;
    static constexpr auto list =
        JsonFieldList{jsonField<"rawId">(&Type::rawId), jsonField<"type">(&Type::type),
                      jsonField<"response">(&Type::response)};
};
template <>
struct JsonFields<server::SignInAnswer> {
    using Type = server::SignInAnswer;
    static constexpr auto list =
        JsonFieldList{jsonField<"clientDataJSON">(&Type::clientDataJSON),
                      jsonField<"authenticatorData">(&Type::authenticatorData),
                      jsonField<"signature">(&Type::signature), jsonField<"userHandle">(&Type::userHandle)};
};
template <>
struct JsonFields<server::SignInCredential> {
    using Type = server::SignInCredential;
    static constexpr auto list =
        JsonFieldList{jsonField<"rawId">(&Type::rawId), jsonField<"type">(&Type::type),
                      jsonField<"response">(&Type::response)};
};
template <>
struct JsonFields<server::OptionsParty> {
    using Type = server::OptionsParty;
    static constexpr auto list = JsonFieldList{jsonField<"id">(&Type::id), jsonField<"name">(&Type::name)};
};
template <>
struct JsonFields<server::OptionsUser> {
    using Type = server::OptionsUser;
    static constexpr auto list = JsonFieldList{jsonField<"id">(&Type::id), jsonField<"name">(&Type::name),
                                               jsonField<"displayName">(&Type::displayName)};
};
template <>
struct JsonFields<server::OptionsAlgorithm> {
    using Type = server::OptionsAlgorithm;
    static constexpr auto list = JsonFieldList{jsonField<"type">(&Type::type), jsonField<"alg">(&Type::alg)};
};
template <>
struct JsonFields<server::OptionsDescriptor> {
    using Type = server::OptionsDescriptor;
    static constexpr auto list = JsonFieldList{jsonField<"type">(&Type::type), jsonField<"id">(&Type::id)};
};
template <>
struct JsonFields<server::OptionsSelection> {
    using Type = server::OptionsSelection;
    static constexpr auto list = JsonFieldList{jsonField<"residentKey">(&Type::residentKey),
                                               jsonField<"requireResidentKey">(&Type::requireResidentKey),
                                               jsonField<"userVerification">(&Type::userVerification)};
};
template <>
struct JsonFields<server::CreationOptions> {
    using Type = server::CreationOptions;
    static constexpr auto list =
        JsonFieldList{jsonField<"challenge">(&Type::challenge),
                      jsonField<"rp">(&Type::rp),
                      jsonField<"user">(&Type::user),
                      jsonField<"pubKeyCredParams">(&Type::pubKeyCredParams),
                      jsonField<"timeout">(&Type::timeout),
                      jsonField<"excludeCredentials">(&Type::excludeCredentials),
                      jsonField<"authenticatorSelection">(&Type::authenticatorSelection),
                      jsonField<"attestation">(&Type::attestation)};
};

} // namespace orvane

ORVANE_JSON(orvane::server::ClientData)
ORVANE_JSON(orvane::server::CreatedCredential)
ORVANE_JSON(orvane::server::SignInCredential)
ORVANE_JSON(orvane::server::CreationOptions)

namespace orvane::server {

namespace {

constexpr std::string_view credentialType = "public-key";

bool isOfQuestion(const std::string &clientData, std::string_view type, const PasskeyQuestion &question)
{
    const auto data = decodeJson<ClientData>(clientData);
    return data && data->type == type && !data->crossOrigin && data->origin == question.site.origin &&
           sameSecret(data->challenge, question.challenge);
}

/// Whether it comes of a passkey of this server, with its user verified.
bool isOfSite(const AuthenticatorData &data, const PasskeySite &site)
{
    return base64UrlText(data.rpIdHash) == digestText(site.rpId) && data.isUserPresent && data.isUserVerified;
}

/// What a passkey signs together with its own data.
std::string withDigest(const std::string &authenticatorData, const std::string &clientData)
{
    return authenticatorData + fromBase64UrlText(digestText(clientData)).value_or("");
}

} // namespace

std::optional<NewPasskey> createdPasskey(std::string_view credentialJson, const PasskeyQuestion &question)
{
    const auto credential = decodeJson<CreatedCredential>(credentialJson);
    if (!credential || credential->type != credentialType)
        return std::nullopt;
    const auto clientData = fromBase64UrlText(credential->response.clientDataJSON);
    const auto bytes = fromBase64UrlText(credential->response.attestationObject);
    if (!clientData || !bytes || !isOfQuestion(*clientData, "webauthn.create", question))
        return std::nullopt;
    const auto object = readAttestationObject(*bytes);
    const auto data = object ? readAuthenticatorData(object->authenticatorData) : std::nullopt;
    if (!data || !data->passkey || !isOfSite(*data, question.site) ||
        base64UrlText(data->passkey->id) != credential->rawId)
        return std::nullopt;
    const auto &[id, key] = *data->passkey;
    if (object->selfSignature &&
        !isSignedBy(key, withDigest(object->authenticatorData, *clientData), *object->selfSignature))
        return std::nullopt;
    return NewPasskey{id, key, data->counter};
}

std::optional<PasskeySignature> readPasskeySignature(std::string_view credentialJson)
{
    const auto credential = decodeJson<SignInCredential>(credentialJson);
    if (!credential || credential->type != credentialType)
        return std::nullopt;
    const SignInAnswer &response = credential->response;
    auto id = fromBase64UrlText(credential->rawId);
    auto clientData = fromBase64UrlText(response.clientDataJSON);
    auto data = fromBase64UrlText(response.authenticatorData);
    auto signature = fromBase64UrlText(response.signature);
    auto user = fromBase64UrlText(response.userHandle);
    if (!id || !clientData || !data || !signature || !user)
        return std::nullopt;
    return PasskeySignature{std::move(*id), std::move(*clientData), std::move(*data), std::move(*signature),
                            std::move(*user)};
}

std::optional<std::uint32_t> checkedCounter(const PasskeySignature &answer, const PasskeyQuestion &question,
                                            const PasskeyPoint &publicKey, std::uint32_t counter)
{
    const auto data = readAuthenticatorData(answer.authenticatorData);
    if (!data || !isOfQuestion(answer.clientData, "webauthn.get", question) ||
        !isOfSite(*data, question.site) ||
        !isSignedBy(publicKey, withDigest(answer.authenticatorData, answer.clientData), answer.signature))
        return std::nullopt;
    const bool counts = data->counter != 0 || counter != 0;
    return counts && data->counter <= counter ? std::nullopt : std::optional(data->counter);
}

std::string creationOptionsJson(const PasskeyQuestion &question, const PasskeyOwner &owner,
                                std::chrono::milliseconds patience)
{
    CreationOptions options;
    options.challenge = question.challenge;
    options.rp = {question.site.rpId, "Orvane"};
    options.user = {base64UrlText(owner.userId), owner.email, owner.name};
    options.timeout = patience.count();
    for (const std::string &id : owner.passkeyIds)
        options.excludeCredentials.push_back({.id = id});
    return encodeJson(options);
}

} // namespace orvane::server
