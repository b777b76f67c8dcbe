// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <string>

namespace orvane {

/// The colour of a new project for which none was chosen, as "#rrggbb": some that are told apart easily on
/// light and dark ground, taken in turn by how many projects there are already. Any thread.
std::string newProjectColor(std::size_t projectsSoFar);

} // namespace orvane
