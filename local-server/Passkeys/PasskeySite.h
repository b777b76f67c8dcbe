// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

namespace orvane::server {

/// The name under which passkeys of this server are known.
struct PasskeySite {
    /// "https://HOST", with the port that is not the usual one.
    std::string origin;
    /// The host alone.
    std::string rpId;

    /// Of the address by which people reach the server; nothing for one without TLS or without a name.
    static std::optional<PasskeySite> at(const std::string &publicAddress);
};

} // namespace orvane::server
