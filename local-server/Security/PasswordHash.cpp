// SPDX-License-Identifier: GPL-3.0-or-later
#include "Security/PasswordHash.h"

#include <sodium.h>

namespace orvane::server {

namespace {

constexpr auto operations = crypto_pwhash_OPSLIMIT_INTERACTIVE;
constexpr auto memory = crypto_pwhash_MEMLIMIT_INTERACTIVE;

} // namespace

std::optional<std::string> hashPassword(const std::string &password)
{
    char hash[crypto_pwhash_STRBYTES];
    if (sodium_init() < 0 ||
        crypto_pwhash_str(hash, password.data(), password.size(), operations, memory) != 0)
        return std::nullopt;
    return std::string(hash);
}

bool passwordFits(const std::optional<std::string> &hash, const std::string &password)
{
    const std::string &checked = hash ? *hash : decoyHash();
    const bool fits = sodium_init() >= 0 &&
                      crypto_pwhash_str_verify(checked.c_str(), password.data(), password.size()) == 0;
    return fits && hash;
}

bool wantsRehash(const std::string &hash)
{
    return crypto_pwhash_str_needs_rehash(hash.c_str(), operations, memory) != 0;
}

const std::string &decoyHash()
{
    static const std::string hash =
        "$argon2id$v=19$m=65536,t=2,p=1$ALNcFk/BuAKUrix04jDlbg$0QJmcTVEdxe3y39bXOXCFqA20e3D+fpBO0MqHoUkN20";
    return hash;
}

} // namespace orvane::server
