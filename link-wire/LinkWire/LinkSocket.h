// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>

/// Where the socket of the server on this computer lies, and who may be at its other end. Any thread.
namespace orvane {

/// The folder of the socket inside the server's data folder, open to its owner alone, and the socket in it.
inline constexpr char linkFolderName[] = "run";
inline constexpr char linkSocketName[] = "server.sock";

/// In bytes, with its end: room for a request with a password, its texts at their longest.
inline constexpr long long longestLinkLine = 65536;

/// Whether the process at the other end of a connected Unix socket runs as this one's user.
bool isOwnUsersSocket(std::ptrdiff_t descriptor);

} // namespace orvane
