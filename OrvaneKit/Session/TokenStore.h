// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"
#include "Support/Task.h"

#include <optional>
#include <string>

namespace orvane {

/// A store that did not answer in time: what it holds is not known, and may be by the next time.
struct StoreSilence {
    bool operator==(const StoreSilence &) const = default;
};

/// A token, or nothing where there is none.
using StoredToken = Result<std::optional<std::string>, StoreSilence>;

/// Where refresh tokens are kept. The account is always a server's address, so one store serves several
/// servers. A store has no failures to report: what cannot be read is not there. Only silence is told apart
/// from that, since it says nothing about the token. Used on one thread, the network thread.
class TokenStore {
public:
    TokenStore() = default;
    TokenStore(const TokenStore &) = delete;
    TokenStore &operator=(const TokenStore &) = delete;
    virtual ~TokenStore() = default;

    virtual Task<StoredToken> read(std::string account) = 0;
    /// Replaces what was there.
    virtual Task<> write(std::string value, std::string account) = 0;
    /// It is no error when there is nothing.
    virtual Task<> remove(std::string account) = 0;
};

} // namespace orvane
