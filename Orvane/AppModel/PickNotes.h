// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/PalettePicks.h"

namespace orvane {

class Installation;
class Tracker;

/// Remembers for the tracker's workspace what was picked, now that it has been done. Main thread.
void notePicks(Installation &installation, const Tracker &tracker, const PalettePicks &picks);

} // namespace orvane
