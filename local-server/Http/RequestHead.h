// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"

#include <optional>
#include <string_view>

/// The head of a GET as it comes over a connection, for requests that the HTTP library does not read. Pure
/// functions.
namespace orvane::server {

/// The request whose line and fields these are, the empty line behind them included. Nothing for what is not
/// plainly a GET without a body, and for one in which a field that decides about it stands twice: whoever
/// reads the head after us may take the other one. Other fields that stand twice become one, with a comma.
std::optional<HttpRequest> readGetHead(std::string_view head);

/// Whether the connection is to become a WebSocket.
bool asksForWebSocket(const HttpHeaders &headers);

} // namespace orvane::server
