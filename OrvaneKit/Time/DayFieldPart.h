// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane {

/// The parts of a typed date.
enum class DayFieldPart { day, month, year };

} // namespace orvane
