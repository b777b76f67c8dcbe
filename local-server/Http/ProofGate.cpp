// SPDX-License-Identifier: GPL-3.0-or-later
#include "Http/ProofGate.h"

#include "Http/Problems.h"
#include "OrvaneAPI/LinkProof.h"

namespace orvane::server {

std::optional<HttpResponse> ProofGate::refuse(const HttpRequest &request) const
{
    if (!isProved(request.headers) || provedNonce(m_key, request))
        return std::nullopt;
    return unauthorized("The request was not made for this server.");
}

std::optional<std::string> ProofGate::nonceOf(const HttpRequest &request) const
{
    return isProved(request.headers) ? provedNonce(m_key, request) : std::nullopt;
}

void ProofGate::prove(const std::optional<std::string> &nonce, HttpResponse &response) const
{
    if (nonce)
        response.headers.set(linkProofHeader, answerProof(m_key, *nonce, response));
}

bool ProofGate::isProved(const HttpHeaders &headers)
{
    return headers.find(linkProofHeader).has_value();
}

} // namespace orvane::server
