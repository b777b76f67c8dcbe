// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/KernelKeyring.h"

#include <linux/keyctl.h>
#include <map>
#include <optional>
#include <sys/syscall.h>
#include <unistd.h>

namespace orvane {

namespace {

constexpr const char *keyType = "user";

template <class... Arguments>
long keyctl(int operation, Arguments... arguments)
{
    return ::syscall(SYS_keyctl, operation, arguments...);
}

/// Only who possesses a key may read it. A process of a session that lacks the user's keyring (of ssh, of
/// cron) would find its keys and be refused what they hold; linked to the process they are its own. A thread
/// that was there before another one linked it knows nothing of that, so each operation does it anew.
bool linkUserKeyring()
{
    return keyctl(KEYCTL_LINK, KEY_SPEC_USER_KEYRING, KEY_SPEC_PROCESS_KEYRING) == 0;
}

std::optional<long> find(const std::string &description)
{
    const long key = keyctl(KEYCTL_SEARCH, KEY_SPEC_USER_KEYRING, keyType, description.c_str(), 0);
    return key > 0 ? std::optional(key) : std::nullopt;
}

std::optional<std::string> readKey(const std::string &description)
{
    const auto key = linkUserKeyring() ? find(description) : std::nullopt;
    std::string value;
    for (long size = 256; key && size > static_cast<long>(value.size());) {
        value.resize(static_cast<std::size_t>(size));
        size = keyctl(KEYCTL_READ, *key, value.data(), value.size());
        if (size < 0)
            return std::nullopt;
        if (size <= static_cast<long>(value.size()))
            return value.substr(0, static_cast<std::size_t>(size));
    }
    return std::nullopt;
}

/// Takes the place of a key of that description.
bool writeKey(const std::string &description, const std::string &value)
{
    return linkUserKeyring() && ::syscall(SYS_add_key, keyType, description.c_str(), value.data(),
                                          value.size(), KEY_SPEC_USER_KEYRING) > 0;
}

void removeKey(const std::string &description)
{
    const auto key = linkUserKeyring() ? find(description) : std::nullopt;
    if (key)
        keyctl(KEYCTL_UNLINK, *key, KEY_SPEC_USER_KEYRING);
}

/// Whether it keeps what it is given; processes may ask at the same time.
bool works(const std::string &service)
{
    const std::string description = service + ".probe " + std::to_string(::getpid());
    const std::string value(64, 'x');
    const bool isKept = writeKey(description, value) && readKey(description) == value;
    removeKey(description);
    return isKept;
}

class KernelKeyring final : public TokenStore {
public:
    explicit KernelKeyring(std::string service) : m_service(std::move(service)) {}

    Task<StoredToken> read(std::string account) override
    {
        const auto unkept = m_unkept.find(account);
        if (unkept != m_unkept.end())
            co_return StoredToken(unkept->second);
        co_return StoredToken(readKey(descriptionOf(account)));
    }

    Task<> write(std::string value, std::string account) override
    {
        const std::string description = descriptionOf(account);
        m_unkept.erase(account);
        if (writeKey(description, value))
            co_return;
        // What it holds is the token before, which is used up.
        removeKey(description);
        m_unkept.insert_or_assign(std::move(account), std::move(value));
    }

    Task<> remove(std::string account) override
    {
        m_unkept.erase(account);
        removeKey(descriptionOf(account));
        co_return;
    }

private:
    std::string descriptionOf(const std::string &account) const { return m_service + " " + account; }

    std::string m_service;
    std::map<std::string, std::string> m_unkept;
};

} // namespace

std::shared_ptr<TokenStore> makeKernelKeyring(const std::string &service)
{
    return works(service) ? std::make_shared<KernelKeyring>(service) : nullptr;
}

} // namespace orvane
