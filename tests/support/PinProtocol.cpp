// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/PinProtocol.h"

#include "Support/Require.h"

#include <QCryptographicHash>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>
#include <openssl/evp.h>

namespace orvane::testing {

namespace {

constexpr std::size_t blockSize = 16;

std::string hmac(const std::string &key, const std::string &message)
{
    return QMessageAuthenticationCode::hash(QByteArray::fromStdString(message),
                                            QByteArray::fromStdString(key), QCryptographicHash::Sha256)
        .toStdString();
}

/// AES-256 in chained blocks, without padding.
std::string ciphered(bool encrypts, const std::string &key, const std::string &start, const std::string &text)
{
    const auto bytes = [](const std::string &data) {
        return reinterpret_cast<const unsigned char *>(data.data());
    };
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    std::string out(text.size(), '\0');
    int size = 0;
    const bool isDone =
        text.size() % blockSize == 0 &&
        EVP_CipherInit(context.get(), EVP_aes_256_cbc(), bytes(key), bytes(start), encrypts ? 1 : 0) == 1 &&
        EVP_CIPHER_CTX_set_padding(context.get(), 0) == 1 &&
        EVP_CipherUpdate(context.get(), reinterpret_cast<unsigned char *>(out.data()), &size, bytes(text),
                         static_cast<int>(text.size())) == 1;
    ORVANE_REQUIRE(isDone, "OpenSSL refuses what a test asks of it");
    return out;
}

} // namespace

std::string sha256(const std::string &data)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(data), QCryptographicHash::Sha256)
        .toStdString();
}

QCborMap PinProtocol::keyAgreement() const
{
    return {{1, 2},
            {3, -25},
            {-1, 1},
            {-2, QByteArray::fromStdString(m_key.x())},
            {-3, QByteArray::fromStdString(m_key.y())}};
}

std::string PinProtocol::aesKey(const QCborMap &theirKey) const
{
    const std::string shared =
        m_key.agree(theirKey[-2].toByteArray().toStdString(), theirKey[-3].toByteArray().toStdString());
    if (m_number == 1)
        return sha256(shared);
    // One step of HKDF with a salt of zeros.
    return hmac(hmac(std::string(32, '\0'), shared), std::string("CTAP2 AES key") + '\1');
}

std::string PinProtocol::decrypted(const QCborMap &theirKey, const std::string &text) const
{
    if (m_number == 1)
        return ciphered(false, aesKey(theirKey), std::string(blockSize, '\0'), text);
    return ciphered(false, aesKey(theirKey), text.substr(0, blockSize), text.substr(blockSize));
}

std::string PinProtocol::encrypted(const QCborMap &theirKey, const std::string &text) const
{
    if (m_number == 1)
        return ciphered(true, aesKey(theirKey), std::string(blockSize, '\0'), text);
    std::string start(blockSize, '\0');
    for (char &byte : start)
        byte = static_cast<char>(QRandomGenerator::system()->bounded(256));
    return start + ciphered(true, aesKey(theirKey), start, text);
}

bool PinProtocol::isBy(const std::string &token, const std::string &message, const std::string &code) const
{
    const std::string whole = hmac(token, message);
    return code == (m_number == 1 ? whole.substr(0, 16) : whole);
}

} // namespace orvane::testing
