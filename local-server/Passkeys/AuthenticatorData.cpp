// SPDX-License-Identifier: GPL-3.0-or-later
#include "Passkeys/AuthenticatorData.h"

#include <QCborMap>
#include <QCborStreamReader>
#include <QCborValue>
#include <memory>
#include <openssl/core_names.h>
#include <openssl/evp.h>
#include <openssl/params.h>

namespace orvane::server {

namespace {

constexpr std::size_t digestSize = 32;
constexpr std::size_t headSize = digestSize + 1 + 4;
constexpr std::size_t makerSize = 16;
constexpr std::size_t longestPasskeyId = 1023;
constexpr qsizetype coordinateSize = 32;

constexpr unsigned userPresentFlag = 0x01;
constexpr unsigned userVerifiedFlag = 0x04;
constexpr unsigned passkeyFlag = 0x40;
constexpr unsigned extensionsFlag = 0x80;

constexpr int es256 = -7;

std::uint32_t bigEndian(std::string_view bytes)
{
    std::uint32_t number = 0;
    for (const char byte : bytes)
        number = (number << 8U) | static_cast<unsigned char>(byte);
    return number;
}

/// The map that the text begins with, which is taken off it; nothing when there is none.
std::optional<QCborMap> takeMap(std::string_view &text)
{
    QCborStreamReader reader(text.data(), static_cast<qsizetype>(text.size()));
    const QCborValue value = QCborValue::fromCbor(reader);
    if (reader.lastError() != QCborError::NoError || !value.isMap())
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(reader.currentOffset()));
    return value.toMap();
}

/// A fraction, or what is too large for an integer, must not be asked for one.
bool isNumber(const QCborValue &value, int number)
{
    return value.isInteger() && value.toInteger() == number;
}

/// Of a COSE key.
std::optional<PasskeyPoint> pointOf(const QCborMap &key)
{
    constexpr int twoCoordinates = 2;
    constexpr int p256 = 1;
    const QByteArray x = key[-2].toByteArray();
    const QByteArray y = key[-3].toByteArray();
    if (!isNumber(key[1], twoCoordinates) || !isNumber(key[3], es256) || !isNumber(key[-1], p256) ||
        x.size() != coordinateSize || y.size() != coordinateSize)
        return std::nullopt;
    return '\4' + x.toStdString() + y.toStdString();
}

/// What begins with the number that says who made the keeper.
std::optional<AuthenticatorData::Passkey> takePasskey(std::string_view &text)
{
    if (text.size() < makerSize + 2)
        return std::nullopt;
    const std::size_t size = bigEndian(text.substr(makerSize, 2));
    text.remove_prefix(makerSize + 2);
    if (size == 0 || size > longestPasskeyId || text.size() < size)
        return std::nullopt;
    std::string id(text.substr(0, size));
    text.remove_prefix(size);
    const auto key = takeMap(text);
    auto point = key ? pointOf(*key) : std::nullopt;
    if (!point)
        return std::nullopt;
    return AuthenticatorData::Passkey{std::move(id), std::move(*point)};
}

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;

/// Null when the point is not on the curve.
Key keyOf(PasskeyPoint point)
{
    using Context = std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)>;
    char curve[] = "P-256";
    OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, curve, 0),
        OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_PUB_KEY, point.data(), point.size()),
        OSSL_PARAM_construct_end()};
    const Context context(EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr), EVP_PKEY_CTX_free);
    EVP_PKEY *key = nullptr;
    if (!context || EVP_PKEY_fromdata_init(context.get()) != 1 ||
        EVP_PKEY_fromdata(context.get(), &key, EVP_PKEY_PUBLIC_KEY, parameters) != 1)
        key = nullptr;
    return {key, EVP_PKEY_free};
}

} // namespace

std::optional<AuthenticatorData> readAuthenticatorData(const std::string &bytes)
{
    std::string_view rest(bytes);
    if (rest.size() < headSize)
        return std::nullopt;
    AuthenticatorData data;
    data.rpIdHash = rest.substr(0, digestSize);
    const unsigned flags = static_cast<unsigned char>(rest[digestSize]);
    data.isUserPresent = (flags & userPresentFlag) != 0;
    data.isUserVerified = (flags & userVerifiedFlag) != 0;
    data.counter = bigEndian(rest.substr(digestSize + 1, 4));
    rest.remove_prefix(headSize);
    if ((flags & passkeyFlag) != 0) {
        data.passkey = takePasskey(rest);
        if (!data.passkey)
            return std::nullopt;
    }
    if ((flags & extensionsFlag) != 0 && !takeMap(rest))
        return std::nullopt;
    return rest.empty() ? std::optional(std::move(data)) : std::nullopt;
}

std::optional<AttestationObject> readAttestationObject(const std::string &bytes)
{
    std::string_view rest(bytes);
    const auto map = takeMap(rest);
    if (!map || !rest.empty())
        return std::nullopt;
    const QCborValue data = (*map)[QStringLiteral("authData")];
    const QCborMap statement = (*map)[QStringLiteral("attStmt")].toMap();
    if (!data.isByteArray())
        return std::nullopt;
    AttestationObject object{.authenticatorData = data.toByteArray().toStdString(), .selfSignature = {}};
    const bool isSelf = (*map)[QStringLiteral("fmt")].toString() == QLatin1String("packed") &&
                        !statement.contains(QStringLiteral("x5c"));
    if (isSelf) {
        if (!isNumber(statement[QStringLiteral("alg")], es256))
            return std::nullopt;
        object.selfSignature = statement[QStringLiteral("sig")].toByteArray().toStdString();
    }
    return object;
}

bool isSignedBy(const PasskeyPoint &publicKey, const std::string &data, const std::string &signature)
{
    const auto raw = [](const std::string &text) {
        return reinterpret_cast<const unsigned char *>(text.data());
    };
    const Key key = keyOf(publicKey);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    return key && context &&
           EVP_DigestVerifyInit(context.get(), nullptr, EVP_sha256(), nullptr, key.get()) == 1 &&
           EVP_DigestVerify(context.get(), raw(signature), signature.size(), raw(data), data.size()) == 1;
}

} // namespace orvane::server
