// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>

/// Passwords are kept as Argon2id hashes. Each call costs tens of milliseconds and 64 MiB, on purpose.
namespace orvane::server {

/// Nothing when the memory for it cannot be had.
std::optional<std::string> hashPassword(const std::string &password);
/// Without a hash (no such account, or one without a password) the answer is no, after the same work, so that
/// its duration does not tell which addresses have an account.
bool passwordFits(const std::optional<std::string> &hash, const std::string &password);
/// Whether the hash was made with weaker settings than new ones get.
bool wantsRehash(const std::string &hash);
/// The hash that stands in for a missing one.
const std::string &decoyHash();

} // namespace orvane::server
