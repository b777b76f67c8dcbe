// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

/// The addresses that an agent names when it signs in. Pure functions, for any thread.
namespace orvane::server {

/// Whether a browser may be sent back there: over TLS, or to a program of its own computer.
bool isRedirectUri(const std::string &uri);
/// Whether `asked` is what was registered. A program of this computer listens at any port that is free.
bool isRegisteredRedirect(const std::string &registered, const std::string &asked);
/// The address with something more in its query; `item` is encoded.
std::string withQueryItem(const std::string &uri, const std::string &item);
/// The name that people know it by: its host, with the port if there is one.
std::string hostForPeople(const std::string &uri);
/// Whether a loopback name stands in it: it stays on this computer.
bool isOnThisComputer(const std::string &uri);
/// Whether an agent's resource is the server that was asked at `address`, or the tools there. The names of
/// this computer's loopback stand for each other.
bool isOurResource(const std::string &address, const std::string &resource);

} // namespace orvane::server
