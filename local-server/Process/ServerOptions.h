// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/RequestGate.h"
#include "Support/Result.h"

#include <chrono>
#include <optional>
#include <string>

namespace orvane::server {

/// What the command line of `orvane-server` says.
struct ServerOptions {
    std::string dataDir;
    /// Where to listen instead of the kept loopback port.
    std::optional<ListenPoint> listen;
    /// The address of a proxy that says for whom it speaks; see RequestGate.
    std::optional<std::string> trustedProxy;
    /// By which people reach the server through that proxy: "https://HOST[:PORT]".
    std::optional<std::string> publicAddress;
    /// Says that it is the service that Orvane's makers run. For tests: the usage does not name it.
    bool isHosted = false;
    /// Lets anybody on this computer sign in by a name alone; see DevProvider.
    bool devProvider = false;
    /// Ends after that long without a request; zero is never.
    std::chrono::seconds idleExit{600};
    /// Stays with its terminal and says what it does there.
    bool foreground = false;
    bool wantsHelp = false;
    bool wantsVersion = false;
};

/// The error is a sentence for people about what is wrong with the command line.
Result<ServerOptions, std::string> readServerOptions(int argc, const char *const *argv);
std::string serverUsage();

} // namespace orvane::server
