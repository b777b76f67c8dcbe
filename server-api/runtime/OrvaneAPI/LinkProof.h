// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"

#include <optional>
#include <string>
#include <string_view>

/// How the server on this computer and its user's programs prove themselves to each other on a port that
/// anybody may have taken. Both know a key that the server makes when it starts and hands out over its own
/// socket only; it dies with the process, and with it the worth of whatever was captured. A request carries
/// the HMAC of what it says, an answer that of what it says to that request. Pure functions, for any thread.
namespace orvane {

/// The header of requests ("v1.NONCE.MAC") and answers ("v1.MAC").
inline constexpr std::string_view linkProofHeader = "Orvane-Proof";

/// 128 random bits as text, new for each request.
std::string newProofNonce();

/// Vouches for the method, the path as it is sent, the body, and the headers Authorization and If-Match.
std::string requestProof(std::string_view key, std::string_view nonce, const HttpRequest &request);
/// The nonce of the proof that the request carries; nothing when there is none or it is not this request's
/// under this key.
std::optional<std::string> provedNonce(std::string_view key, const HttpRequest &request);

/// Vouches for the status and the body, which is not packed, as the answer to the request of that nonce.
std::string answerProof(std::string_view key, std::string_view nonce, const HttpResponse &response);
bool isAnswerProved(std::string_view key, std::string_view nonce, const HttpResponse &response);

} // namespace orvane
