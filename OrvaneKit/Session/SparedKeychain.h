// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Session/Keychain.h"

#include <memory>

namespace orvane {

/// The keychain, and a spare place for a token that it does not take. A token lies in one of the two: the
/// spare's goes as soon as the keychain takes one. So what the spare holds is the newer one, and is read
/// first.
class SparedKeychain final : public TokenStore {
public:
    SparedKeychain(std::shared_ptr<Keychain> keychain, std::shared_ptr<TokenStore> spare);

    Task<StoredToken> read(std::string account) override;
    Task<> write(std::string value, std::string account) override;
    Task<> remove(std::string account) override;

private:
    std::shared_ptr<Keychain> m_keychain;
    std::shared_ptr<TokenStore> m_spare;
};

} // namespace orvane
