// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/SparedKeychain.h"

#include "Support/Require.h"

namespace orvane {

SparedKeychain::SparedKeychain(std::shared_ptr<Keychain> keychain, std::shared_ptr<TokenStore> spare)
    : m_keychain(std::move(keychain)), m_spare(std::move(spare))
{
    ORVANE_REQUIRE(m_keychain && m_spare, "there are two places");
}

Task<StoredToken> SparedKeychain::read(std::string account)
{
    const auto keychain = m_keychain;
    auto newer = co_await m_spare->read(account);
    if (newer && *newer)
        co_return std::move(newer);
    co_return co_await keychain->read(std::move(account));
}

Task<> SparedKeychain::write(std::string value, std::string account)
{
    const auto spare = m_spare;
    if (co_await m_keychain->keep(value, account))
        co_await spare->remove(std::move(account));
    else
        co_await spare->write(std::move(value), std::move(account));
}

Task<> SparedKeychain::remove(std::string account)
{
    const auto keychain = m_keychain;
    co_await m_spare->remove(account);
    co_await keychain->remove(std::move(account));
}

} // namespace orvane
