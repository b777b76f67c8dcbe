// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::testing {

class Album;

/// Changes that wait to be settled, and those that were refused.
void drawConflict(Album &album);

} // namespace orvane::testing
