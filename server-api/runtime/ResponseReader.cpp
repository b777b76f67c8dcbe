// SPDX-License-Identifier: GPL-3.0-or-later
#include "OrvaneAPI/ResponseReader.h"

namespace orvane {

DecodingError decodingError(const JsonError &error)
{
    return {error.path.empty() ? error.message : error.path + ": " + error.message};
}

} // namespace orvane
