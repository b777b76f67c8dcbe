// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Appearance.h"
#include "Desktop/DesktopWindow.h"

#include <QSize>
#include <QString>
#include <string_view>

namespace orvane::testing {

/// Where pictures of windows go, and what is wrong with them.
class Album {
public:
    /// With `isWhole` each is taken in both sizes, light and dark.
    Album(QString folder, bool isWhole);

    /// The small window in the light, and where all are wanted the large one and both in the dark too. A text
    /// that has no room is complained about.
    void take(DesktopWindow &desktop, const QString &name);
    void complain(const QString &problem);
    int problems() const { return m_problems; }

private:
    void save(DesktopWindow &desktop, const QString &name, QSize size, Appearance::Scheme scheme);

    QString m_folder;
    bool m_isWhole;
    int m_problems = 0;
};

/// Null when no entry is called that.
const TimeEntryResponse *entryCalled(DesktopWindow &desktop, std::string_view description);
/// Its identifier, or nothing.
QString idOf(DesktopWindow &desktop, std::string_view description);

} // namespace orvane::testing
