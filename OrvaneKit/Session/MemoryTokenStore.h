// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Session/TokenStore.h"

#include <map>
#include <mutex>

namespace orvane {

/// Keeps tokens as long as the process lives. May be shared between threads.
class MemoryTokenStore final : public TokenStore {
public:
    Task<StoredToken> read(std::string account) override;
    Task<> write(std::string value, std::string account) override;
    Task<> remove(std::string account) override;

private:
    std::mutex m_mutex;
    std::map<std::string, std::string> m_values;
};

} // namespace orvane
