// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Account/StoredStatus.h"
#include "Support/Result.h"

#include <optional>
#include <string>
#include <string_view>

namespace orvane {

/// One line about the timer for a status bar: the format with its placeholders filled in. {running} is what
/// the work is, {elapsed} how long it runs, {today} the day's total, {project} the running entry's, {waiting}
/// the number of changes to be sent; what there is nothing of is empty. Names and descriptions cannot steer a
/// terminal or a bar: control characters are spaces and each "#" is its full-width form.
///
/// Without a status the line is empty. The error is a sentence about a placeholder that is none of these. Any
/// thread.
Result<std::string, std::string> statusLine(std::string_view format,
                                            const std::optional<StoredStatus> &status);

} // namespace orvane
