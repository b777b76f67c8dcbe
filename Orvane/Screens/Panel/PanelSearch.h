// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "QuickEntry/Palette.h"
#include "Screens/Panel/PanelPlace.h"
#include "Screens/Panel/PanelRow.h"

#include <QCoreApplication>
#include <vector>

namespace orvane {

class SentenceCatalog;
class Tracker;

/// Finds what the panel offers. It keeps the names of a tracker's catalog and entries ready to be searched at
/// every key press; it is told when they change. Main thread.
class PanelSearch {
    Q_DECLARE_TR_FUNCTIONS(orvane::PanelSearch)

public:
    /// What is asked for.
    struct Asked {
        bool isEmpty = true; ///< nothing is typed
        PanelPlace place;    ///< what stands at the cursor
        // Of a word alone:
        QString description; ///< the words of the sentence that say what the work is
        bool isTime = false; ///< it is read as a time

        bool operator==(const Asked &) const = default;
    };

    /// So many rows are had at most; who does not find it among them types on.
    static constexpr std::size_t mostRows = 40;
    /// And so many before the first letter.
    static constexpr std::size_t mostRowsAtFirst = 8;
    static constexpr std::size_t mostFrequent = 4;
    /// Of what else is found beside that which was asked for.
    static constexpr std::size_t mostOthers = 4;

    void prepareNames(const Tracker &tracker);
    /// Which are known by names, too.
    void prepareEntries(const Tracker &tracker);

    std::vector<PanelRow> find(const Asked &asked, const Tracker &tracker, const SentenceCatalog &names,
                               const PaletteUsage &usage, Instant now) const;

private:
    struct Search;

    /// Projects, tasks and clients.
    Palette m_places;
    Palette m_tags;
    Palette m_recent;
};

} // namespace orvane
