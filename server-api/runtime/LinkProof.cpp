// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/LinkProof.h"

#include <QByteArray>
#include <QCryptographicHash>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>
#include <array>

namespace orvane {

namespace {

constexpr auto base64Url = QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals;
constexpr std::string_view version = "v1.";

/// The bytes themselves, not a copy.
QByteArray bytes(std::string_view text)
{
    return QByteArray::fromRawData(text.data(), static_cast<qsizetype>(text.size()));
}

std::string bodyDigest(std::string_view body)
{
    return QCryptographicHash::hash(bytes(body), QCryptographicHash::Sha256).toHex().toStdString();
}

std::string signature(std::string_view key, const std::string &text)
{
    return QMessageAuthenticationCode::hash(bytes(text), bytes(key), QCryptographicHash::Sha256)
        .toBase64(base64Url)
        .toStdString();
}

std::string signedRequest(std::string_view key, std::string_view nonce, const HttpRequest &request)
{
    std::string signedText = "request\n";
    for (const std::string_view part : {text(request.method), std::string_view(request.path), nonce}) {
        signedText += part;
        signedText += '\n';
    }
    for (const std::string_view header : {"Authorization", "If-Match"})
        signedText += request.headers.find(header).value_or("") + '\n';
    return signature(key, signedText + bodyDigest(request.body));
}

/// Takes the same time wherever two texts part.
bool sameText(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    volatile unsigned char difference = 0;
    for (std::size_t i = 0; i < a.size(); ++i)
        difference = static_cast<unsigned char>(difference | static_cast<unsigned char>(a[i] ^ b[i]));
    return difference == 0;
}

} // namespace

std::string newProofNonce()
{
    std::array<quint32, 4> random{};
    QRandomGenerator::system()->fillRange(random.data(), random.size());
    return QByteArray(reinterpret_cast<const char *>(random.data()), sizeof random)
        .toBase64(base64Url)
        .toStdString();
}

std::string requestProof(std::string_view key, std::string_view nonce, const HttpRequest &request)
{
    return std::string(version) + std::string(nonce) + "." + signedRequest(key, nonce, request);
}

std::optional<std::string> provedNonce(std::string_view key, const HttpRequest &request)
{
    const auto proof = request.headers.find(linkProofHeader);
    if (key.empty() || !proof || !proof->starts_with(version))
        return std::nullopt;
    const std::string_view rest = std::string_view(*proof).substr(version.size());
    const std::size_t dot = rest.find('.');
    if (dot == 0 || dot == std::string_view::npos)
        return std::nullopt;
    const std::string_view nonce = rest.substr(0, dot);
    if (!sameText(rest.substr(dot + 1), signedRequest(key, nonce, request)))
        return std::nullopt;
    return std::string(nonce);
}

std::string answerProof(std::string_view key, std::string_view nonce, const HttpResponse &response)
{
    const std::string signedText = "answer\n" + std::string(nonce) + "\n" + std::to_string(response.status) +
                                   "\n" + bodyDigest(response.body);
    return std::string(version) + signature(key, signedText);
}

bool isAnswerProved(std::string_view key, std::string_view nonce, const HttpResponse &response)
{
    const auto proof = response.headers.find(linkProofHeader);
    return proof && !key.empty() && sameText(*proof, answerProof(key, nonce, response));
}

} // namespace orvane
