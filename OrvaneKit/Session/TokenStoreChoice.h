// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Session/TokenStore.h"

#include <QString>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class NetworkThread;

/// A store of tokens, and what to tell the user about it when it is one that forgets.
struct TokenStoreChoice {
    std::shared_ptr<TokenStore> store;
    /// Set when tokens stay in memory, or may have to: a sentence to show when somebody signs in. They are
    /// never written to a file instead.
    std::optional<std::string> warning;
};

/// The keychain's service for an installation: the usual one, or with `dataFolder` (the value of --data-dir)
/// one that ends in a digest of the folder's canonical path, so that installations never share a token.
QString keychainService(const std::optional<std::string> &dataFolder);

/// The keychain where one works or does not answer just now, else memory. Looks for it until it has an
/// answer, then no more in a process. From any thread with an event loop.
Task<TokenStoreChoice> makeTokenStore(NetworkThread &thread, std::optional<std::string> dataFolder);

} // namespace orvane
