// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/PasskeyOptions.h"

#include "Support/JsonImpl.h"

#include <QByteArray>
#include <QHostAddress>
#include <QUrl>
#include <libpsl.h>
#include <memory>

namespace orvane {

/// The members that are heeded of the options' JSON.
struct CreationOptionsJson {
    struct Party {
        std::string id;
        std::string name;
    };
    struct User {
        std::string id;
        std::string name;
    };
    struct Descriptor {
        std::string id;
    };
    std::string challenge;
    Party rp;
    User user;
    std::vector<Descriptor> excludeCredentials;
};

template <>
struct JsonFields<CreationOptionsJson::Party> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&CreationOptionsJson::Party::id),
                                               jsonField<"name">(&CreationOptionsJson::Party::name)};
};
template <>
struct JsonFields<CreationOptionsJson::User> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&CreationOptionsJson::User::id),
                                               jsonField<"name">(&CreationOptionsJson::User::name)};
};
template <>
struct JsonFields<CreationOptionsJson::Descriptor> {
    static constexpr auto list = JsonFieldList{jsonField<"id">(&CreationOptionsJson::Descriptor::id)};
};
template <>
struct JsonFields<CreationOptionsJson> {
    static constexpr auto list = JsonFieldList{
        jsonField<"challenge">(&CreationOptionsJson::challenge), jsonField<"rp">(&CreationOptionsJson::rp),
        jsonField<"user">(&CreationOptionsJson::user),
        jsonField<"excludeCredentials">(&CreationOptionsJson::excludeCredentials, JsonPresence::defaulted)};
};

} // namespace orvane

ORVANE_JSON(orvane::CreationOptionsJson)

namespace orvane {

namespace {

constexpr std::size_t longestUserId = 64;
constexpr auto alphabet = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

/// Empty for an address that has none, or is not an https one.
std::string hostNameOf(const QUrl &server)
{
    const QString host = server.host(QUrl::FullyEncoded);
    const bool isName = !host.isEmpty() && QHostAddress(host).isNull();
    return server.isValid() && server.scheme() == QLatin1String("https") && isName ? host.toStdString()
                                                                                   : std::string();
}

bool isPublicSuffix(const std::string &name)
{
    // The system's list where that is newer than the library's own.
    static const std::unique_ptr<psl_ctx_t, decltype(&psl_free)> list(psl_latest(nullptr), psl_free);
    return !list || psl_is_public_suffix(list.get(), name.c_str()) != 0;
}

} // namespace

std::string base64UrlOf(std::string_view bytes)
{
    return QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()))
        .toBase64(alphabet)
        .toStdString();
}

std::optional<std::string> fromBase64Url(std::string_view text)
{
    const auto decoded = QByteArray::fromBase64Encoding(
        QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size())),
        alphabet | QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return std::nullopt;
    // Padding, and bits that belong to no byte, are read over.
    std::string bytes = decoded.decoded.toStdString();
    return base64UrlOf(bytes) == text ? std::optional(std::move(bytes)) : std::nullopt;
}

Result<PasskeyAssertionOptions, PasskeyError>
readAssertionOptions(const NativePasskeyOptionsResponse &options)
{
    auto challenge = fromBase64Url(options.challenge);
    if (!challenge || challenge->empty() || options.rpId.empty())
        return failure(PasskeyError::invalidOptions);
    return PasskeyAssertionOptions{std::move(*challenge), options.rpId};
}

Result<PasskeyRegistrationOptions, PasskeyError> readRegistrationOptions(std::string_view json)
{
    const auto read = decodeJson<CreationOptionsJson>(json);
    if (!read)
        return failure(PasskeyError::invalidOptions);
    auto challenge = fromBase64Url(read->challenge);
    auto userId = fromBase64Url(read->user.id);
    if (!challenge || challenge->empty() || read->rp.id.empty() || !userId || userId->empty() ||
        userId->size() > longestUserId)
        return failure(PasskeyError::invalidOptions);
    PasskeyRegistrationOptions options;
    options.challenge = std::move(*challenge);
    options.rp = {read->rp.id, read->rp.name};
    options.user = {std::move(*userId), read->user.name};
    for (const CreationOptionsJson::Descriptor &descriptor : read->excludeCredentials) {
        auto id = fromBase64Url(descriptor.id);
        if (!id || id->empty())
            return failure(PasskeyError::invalidOptions);
        options.excludedIds.push_back(std::move(*id));
    }
    return options;
}

std::optional<std::string> passkeyOrigin(const std::string &server)
{
    const QUrl url(QString::fromStdString(server));
    std::string origin = hostNameOf(url);
    if (origin.empty())
        return std::nullopt;
    origin.insert(0, "https://");
    constexpr int usualPort = 443;
    if (const int port = url.port(usualPort); port != usualPort)
        origin += ':' + std::to_string(port);
    return origin;
}

bool isRelyingParty(const std::string &rpId, const std::string &server)
{
    const std::string host = hostNameOf(QUrl(QString::fromStdString(server)));
    if (host.empty() || rpId.empty())
        return false;
    return host == rpId || (host.ends_with('.' + rpId) && !isPublicSuffix(rpId));
}

} // namespace orvane
