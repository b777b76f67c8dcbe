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

/// Whom the proxy got the request from: the last hop of X-Forwarded-For or, without that, of Forwarded.
/// Nothing when there is none, or it is no address ("unknown").
std::optional<std::string> forwardedPeer(const HttpHeaders &headers);
/// The name that the request was sent to, with its port if it has one: X-Forwarded-Host or, without that, the
/// "host" of Forwarded's last hop.
std::optional<std::string> forwardedHost(const HttpHeaders &headers);

} // namespace orvane::server
