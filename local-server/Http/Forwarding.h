// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "OrvaneAPI/HttpMessage.h"

#include <optional>
#include <string>

class QHostAddress;

/// What a proxy says about the request that it hands on. Any client can write these headers, so they are
/// read only where they come from a proxy that is trusted to write or remove them.
namespace orvane::server {

/// An address in the form in which two are compared: an IPv4 address in IPv6 clothes is an IPv4 address.
std::string addressText(const QHostAddress &address);

/// Whom the proxy got the request from: the last hop of X-Forwarded-For or Forwarded. A proxy that sets one
/// may hand on the other as a client wrote it, so where both are there they have to agree. Nothing when they
/// do not, there is none, or it is no address ("unknown").
std::optional<std::string> forwardedPeer(const HttpHeaders &headers);
/// The name that the request was sent to, with its port if it has one: X-Forwarded-Host or the "host" of
/// Forwarded's last hop. Nothing when these differ.
std::optional<std::string> forwardedHost(const HttpHeaders &headers);
/// "http" or "https", by which the request came to the proxy: X-Forwarded-Proto or the "proto" of Forwarded's
/// last hop. Nothing when these differ.
std::optional<std::string> forwardedScheme(const HttpHeaders &headers);

} // namespace orvane::server
