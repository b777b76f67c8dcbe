// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <memory>
#include <string>

using EVP_PKEY = struct evp_pkey_st;

namespace orvane::testing {

/// A key on the curve P-256, by OpenSSL. Texts are bytes; what cannot be done ends the test.
class P256Key {
public:
    /// A new one.
    P256Key();

    /// The point of the public key, 32 bytes each.
    std::string x() const { return m_point.substr(1, 32); }
    std::string y() const { return m_point.substr(33); }
    /// ECDSA with SHA-256, in DER.
    std::string sign(const std::string &data) const;
    /// What this key and the other side's have in common: the 32 bytes of x.
    std::string agree(const std::string &otherX, const std::string &otherY) const;

private:
    std::shared_ptr<EVP_PKEY> m_key;
    /// Uncompressed: 4, x, y.
    std::string m_point;
};

} // namespace orvane::testing
