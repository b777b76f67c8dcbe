// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"

#include <optional>
#include <string>

namespace orvane::server {

/// Whether a request came from a program that this process gave its key to, over its own socket. Behind the
/// gate a request that carries a proof is proved: one with a wrong proof, which a dead server's key made or
/// somebody made up, does not get through.
class ProofGate {
public:
    /// Without a key no proof is good.
    explicit ProofGate(std::string key) : m_key(std::move(key)) {}

    /// The refusal of a request whose proof is wrong. One without a proof claims nothing and may pass.
    std::optional<HttpResponse> refuse(const HttpRequest &request) const;
    /// What the answer to a request has to be proved with; nothing for one without a proof.
    std::optional<std::string> nonceOf(const HttpRequest &request) const;
    void prove(const std::optional<std::string> &nonce, HttpResponse &response) const;
    /// Whether a request is proved that got through.
    static bool isProved(const HttpHeaders &headers);

private:
    std::string m_key;
};

} // namespace orvane::server
