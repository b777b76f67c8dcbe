// SPDX-License-Identifier: GPL-3.0-or-later
#include "QuickEntry/PalettePicks.h"

namespace orvane {

PalettePicks PalettePicks::of(const EntrySentence::Reading &reading)
{
    using Kind = PaletteItem::Kind;
    PalettePicks picks;
    const auto add = [&picks](Kind kind, const std::optional<std::string> &id) {
        if (id)
            picks.keys.push_back(PaletteItem::keyOf(kind, *id));
    };
    add(Kind::project, reading.projectID);
    add(Kind::task, reading.taskID);
    add(Kind::client, reading.clientID);
    for (const std::string &tag : reading.tagIDs)
        add(Kind::tag, tag);
    return picks;
}

PaletteUsage PalettePicks::notedIn(PaletteUsage usage, Instant now) const
{
    for (const std::string &key : keys)
        usage.record(key, now);
    return usage;
}

} // namespace orvane
