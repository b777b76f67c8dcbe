// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Support/Result.h"

#include <string>

namespace orvane {

/// A server's address as it is used: http or https, without a slash at the end. The error is a sentence of
/// what is wanted, to follow what asked for it ("--server").
Result<std::string, std::string> serverAddress(const std::string &typed);

/// The same of what a person types when asked: without a scheme it is https.
Result<std::string, std::string> serverAddressOf(const std::string &answer);

} // namespace orvane
