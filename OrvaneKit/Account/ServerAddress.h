// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

/// The addresses of servers as people type them.
namespace orvane {

/// "https://time.example.com", without a slash at the end; nothing where the text is no address of a server.
std::optional<std::string> serverAddress(const std::string &typed);
/// The same of what was typed as an answer: spaces around it do not count, and "time.example.com" alone is
/// taken to be encrypted.
std::optional<std::string> serverAddressOf(const std::string &answer);

/// Whether what is sent to a server goes over a network as it is.
bool isReadableOnTheWay(const std::string &server);

} // namespace orvane
