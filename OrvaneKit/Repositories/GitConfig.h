// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>
#include <string_view>

namespace orvane {

/// The one thing that this program wants to know of a git configuration file.
struct GitConfig {
    /// The address of the remote "origin" in the text of a configuration, empty when none is given. The first
    /// "url" counts. Quotes, escapes, continued lines and comments are read as git writes and reads them; an
    /// escape that git does not know stays as it stands, so "C:\repos" is just that. Included files and
    /// rewriting rules ("insteadOf") are not followed.
    static std::string origin(std::string_view text);
};

} // namespace orvane
