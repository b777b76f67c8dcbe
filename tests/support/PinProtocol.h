// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "support/P256Key.h"

#include <QCborMap>
#include <optional>
#include <string>

namespace orvane::testing {

/// A security key's side of CTAP2's PIN protocols, of which `number` says which: 1 or 2. Texts are bytes.
class PinProtocol {
public:
    explicit PinProtocol(int number) : m_number(number) {}

    int number() const { return m_number; }
    /// The public half for the other side, as a COSE key.
    QCborMap keyAgreement() const;
    /// After a wrong PIN.
    void renewKey() { m_key = P256Key(); }
    /// What the other side wrote under the secret that it has in common with this one.
    std::string decrypted(const QCborMap &theirKey, const std::string &text) const;
    std::string encrypted(const QCborMap &theirKey, const std::string &text) const;
    /// Whether `code` was made for `message` by who has the token.
    bool isBy(const std::string &token, const std::string &message, const std::string &code) const;

private:
    std::string aesKey(const QCborMap &theirKey) const;

    int m_number;
    P256Key m_key;
};

std::string sha256(const std::string &data);

} // namespace orvane::testing
