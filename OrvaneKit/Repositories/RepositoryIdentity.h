// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// The text that names a repository on every computer where it is cloned: the only form in which its place is
/// ever uploaded. Pure functions, for any thread.
struct RepositoryIdentity {
    /// "origin:" and the remote's address where `origin` names another host; otherwise "path:" and 32
    /// lower-case hexadecimal digits, the first half of the SHA-256 of `folder`.
    static std::string of(std::string_view origin, std::string_view folder);

    /// "host/path" of a remote's address, the same for "https://host/path.git", "ssh://git@host/path/" and
    /// "git@host:path.git": without scheme, user, slashes around the path and one ".git" at its end; the host
    /// in lower case, with its port. None for what lies on a local disk ("file:" and bare paths, those of
    /// Windows too) and for an address that belongs to a helper program: such text tells of this computer
    /// alone.
    static std::optional<std::string> remoteAddress(std::string_view address);
};

} // namespace orvane
