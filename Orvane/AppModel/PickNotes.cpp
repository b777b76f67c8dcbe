// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/PickNotes.h"

#include "Account/Installation.h"
#include "Time/AppClock.h"
#include "Tracker/Tracker.h"

namespace orvane {

void notePicks(Installation &installation, const Tracker &tracker, const PalettePicks &picks)
{
    if (picks.isEmpty())
        return;
    const std::string workspace = tracker.workspace().id;
    installation.setPaletteUsage(workspace,
                                 picks.notedIn(installation.paletteUsage(workspace), AppClock::now()));
}

} // namespace orvane
