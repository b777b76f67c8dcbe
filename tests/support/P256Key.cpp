// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/P256Key.h"

#include "Support/Require.h"

#include <openssl/core_names.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/param_build.h>

namespace orvane::testing {

namespace {

void require(bool condition)
{
    ORVANE_REQUIRE(condition, "OpenSSL refuses what a test asks of it");
}

unsigned char *to(std::string &text)
{
    return reinterpret_cast<unsigned char *>(text.data());
}

const unsigned char *from(const std::string &text)
{
    return reinterpret_cast<const unsigned char *>(text.data());
}

} // namespace

P256Key::P256Key() : m_key(EVP_EC_gen("P-256"), EVP_PKEY_free), m_point(65, '\0')
{
    std::size_t size = 0;
    require(m_key && EVP_PKEY_get_octet_string_param(m_key.get(), OSSL_PKEY_PARAM_PUB_KEY, to(m_point),
                                                     m_point.size(), &size) == 1);
    require(size == m_point.size() && m_point[0] == 4);
}

std::string P256Key::sign(const std::string &data) const
{
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    std::string signature(128, '\0');
    std::size_t size = signature.size();
    require(EVP_DigestSignInit(context.get(), nullptr, EVP_sha256(), nullptr, m_key.get()) == 1 &&
            EVP_DigestSign(context.get(), to(signature), &size, from(data), data.size()) == 1);
    signature.resize(size);
    return signature;
}

std::string P256Key::agree(const std::string &otherX, const std::string &otherY) const
{
    std::string point = '\4' + otherX + otherY;
    char group[] = "P-256";
    OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_PKEY_PARAM_GROUP_NAME, group, 0),
        OSSL_PARAM_construct_octet_string(OSSL_PKEY_PARAM_PUB_KEY, point.data(), point.size()),
        OSSL_PARAM_construct_end()};
    using Context = std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)>;
    const Context import(EVP_PKEY_CTX_new_from_name(nullptr, "EC", nullptr), EVP_PKEY_CTX_free);
    EVP_PKEY *other = nullptr;
    require(EVP_PKEY_fromdata_init(import.get()) == 1 &&
            EVP_PKEY_fromdata(import.get(), &other, EVP_PKEY_PUBLIC_KEY, parameters) == 1);
    const std::shared_ptr<EVP_PKEY> kept(other, EVP_PKEY_free);
    const Context derive(EVP_PKEY_CTX_new(m_key.get(), nullptr), EVP_PKEY_CTX_free);
    std::string secret(32, '\0');
    std::size_t size = secret.size();
    require(EVP_PKEY_derive_init(derive.get()) == 1 && EVP_PKEY_derive_set_peer(derive.get(), other) == 1 &&
            EVP_PKEY_derive(derive.get(), to(secret), &size) == 1 && size == secret.size());
    return secret;
}

} // namespace orvane::testing
