// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/ResponseReader.h"

namespace orvane {

DecodingError decodingError(const JsonError &error)
{
    return {error.path.empty() ? error.message : error.path + ": " + error.message};
}

std::optional<DecodingError> decodingError(const std::optional<JsonError> &error)
{
    return error ? std::optional(decodingError(*error)) : std::nullopt;
}

} // namespace orvane
