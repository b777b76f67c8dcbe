// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Session/TokenStore.h"

#include <QString>
#include <memory>
#include <optional>
#include <string>

namespace orvane {

class NetworkThread;

/// Where refresh tokens lie. They are never written to a file.
enum class TokenPlace {
    keychain,
    /// It did not answer just now; a token that it does not take lies in the kernel's keyring, where there is
    /// one.
    silentKeychain,
    /// At most until the computer restarts.
    kernelKeyring,
    /// As long as the process lives.
    memory,
};

struct TokenStoreChoice {
    std::shared_ptr<TokenStore> store;
    TokenPlace place = TokenPlace::keychain;
    /// Set for every place but the keychain: a sentence about it, to show when somebody signs in.
    std::optional<std::string> notice;
};

/// The keychain's service for an installation: the usual one, or with `dataFolder`, where it lies, one that
/// ends in a digest of the folder's canonical path, so that installations never share a token.
QString keychainService(const std::optional<std::string> &dataFolder);

/// The keychain where one works or does not answer just now, else the kernel's keyring, else memory. Looks
/// for the keychain until it has an answer, then no more in a process. From any thread with an event loop.
Task<TokenStoreChoice> makeTokenStore(NetworkThread &thread, std::optional<std::string> dataFolder);

} // namespace orvane
