// SPDX-License-Identifier: GPL-3.0-or-later
#include "Session/MemoryTokenStore.h"

namespace orvane {

Task<StoredToken> MemoryTokenStore::read(std::string account)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_values.find(account);
    co_return StoredToken(found == m_values.end() ? std::nullopt : std::optional(found->second));
}

Task<> MemoryTokenStore::write(std::string value, std::string account)
{
    const std::lock_guard lock(m_mutex);
    m_values.insert_or_assign(std::move(account), std::move(value));
    co_return;
}

Task<> MemoryTokenStore::remove(std::string account)
{
    const std::lock_guard lock(m_mutex);
    m_values.erase(account);
    co_return;
}

} // namespace orvane
