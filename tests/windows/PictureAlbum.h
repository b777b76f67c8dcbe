// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "Appearance.h"
#include "Desktop/DesktopWindow.h"

#include <QString>
#include <QTranslator>
#include <functional>
#include <string_view>

namespace orvane::testing {

/// Where pictures go, and what is wrong with them: a text of ours that is cut, or that nothing was drawn.
class Album {
public:
    Album(QString folder, bool isWhole);

    /// The small window in the light, and where all are wanted the large one and both in the dark too.
    void take(DesktopWindow &desktop, const QString &name);
    /// The panel in the light, and where all are wanted in the dark too.
    void takePanel(DesktopWindow &desktop, const QString &name);
    /// Meanwhile all is said the longer by two fifths, as other languages do.
    static void withLongTexts(QQuickWindow *window, const std::function<void()> &draw);

    void complain(const QString &problem);
    int problems() const { return m_problems; }

private:
    void save(QQuickWindow *window, const QString &name, Appearance::Scheme scheme);

    QString m_folder;
    bool m_isWhole;
    int m_problems = 0;
};

/// Whether the window comes up and what is wanted of it then holds.
bool opens(DesktopWindow &desktop, const std::function<bool()> &holds);
/// Null when no entry is called that.
const TimeEntryResponse *entryCalled(DesktopWindow &desktop, std::string_view description);
/// Its identifier, or nothing.
QString idOf(DesktopWindow &desktop, std::string_view description);

/// What the rest of the pictures' program draws, a file each.
void drawConflict(Album &album);
void drawConnect(Album &album);
void drawPanel(Album &album);
void drawPasskeys(Album &album);
void drawReview(Album &album);
void drawSections(Album &album);
void drawSignIn(Album &album);
void drawStates(Album &album);

} // namespace orvane::testing
