// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/Palette.h"

#include <QString>
#include <string>
#include <vector>

namespace orvane {

/// One line that the panel offers. A value.
struct PanelRow {
    enum class Kind {
        name,  ///< of a project, task, client or tag, to be put into the sentence
        entry, ///< to go on with
        stop,
        continueLast,
        openWindow,
        createProject,
        createClient,
        createTag,
    };

    Kind kind = Kind::name;
    PaletteItem item = {};   ///< of a name or an entry
    std::string toMake = {}; ///< the name of what is to be created
    QString title = {};
    std::vector<TextRange> marks = {}; ///< what of the title matched, in UTF-16 units
    QString detail = {};
    QString kindText = {};
    QString icon = {};  ///< empty: a project's dot
    QString color = {}; ///< of that, as the server has it

    bool operator==(const PanelRow &) const = default;

    bool completes() const { return kind == Kind::name || kind == Kind::entry; }
    bool creates() const { return kind >= Kind::createProject; }
};

} // namespace orvane
