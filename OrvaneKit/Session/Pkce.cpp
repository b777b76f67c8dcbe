// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/Pkce.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QRandomGenerator>
#include <array>

namespace orvane {

namespace {

constexpr auto base64Url = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;

} // namespace

std::string pkceChallenge(const std::string &verifier)
{
    const QByteArray digest =
        QCryptographicHash::hash(QByteArray::fromStdString(verifier), QCryptographicHash::Sha256);
    return digest.toBase64(base64Url).toStdString();
}

Pkce Pkce::make()
{
    std::array<quint32, 8> random{};
    QRandomGenerator::system()->fillRange(random.data(), random.size());
    const QByteArray bytes(reinterpret_cast<const char *>(random.data()), sizeof random);
    Pkce result{.verifier = bytes.toBase64(base64Url).toStdString(), .challenge = {}};
    result.challenge = pkceChallenge(result.verifier);
    return result;
}

} // namespace orvane
