// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <string>

namespace orvane {

/// An answer of the server that its API document does not describe: another status, or a body that cannot be
/// read as what it should be. `operation` is the operation's name, `message` what was wrong and where;
/// neither holds content of the body.
struct DecodingError {
    std::string operation;
    std::string message;

    bool operator==(const DecodingError &) const = default;
};

} // namespace orvane
