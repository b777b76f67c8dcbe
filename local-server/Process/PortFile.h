// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// The port that a server keeps: the stores of its clients are named after its address.
namespace orvane::server {

/// Nothing when there is none yet, or what is there is not a port.
std::optional<std::uint16_t> keptPort(const std::string &path);
/// Replaces the file as a whole. Answers what went wrong, or nothing.
std::string keepPort(const std::string &path, std::uint16_t port);

} // namespace orvane::server
