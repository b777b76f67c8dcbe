// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Http/CallError.h"

#include <string>

namespace orvane {

/// What the server refused, with the name of each field that it found fault with: "Color: This is not a
/// color." For people; any thread.
std::string refusalText(const APIError &refusal);

} // namespace orvane
