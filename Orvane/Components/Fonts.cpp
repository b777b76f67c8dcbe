// SPDX-License-Identifier: GPL-3.0-or-later
#include "Fonts.h"

#include <QFont>
#include <QFontDatabase>
#include <QGuiApplication>

namespace orvane {

void loadFonts()
{
    for (const char *weight : {"Regular", "Medium", "SemiBold"}) {
        const QString file = QStringLiteral(":/qt/qml/Orvane/Components/fonts/OrvaneFigures-%1.otf")
                                 .arg(QLatin1String(weight));
        if (QFontDatabase::addApplicationFont(file) < 0) {
            qFatal("The program was built without its typeface");
        }
    }
    QFont font(QStringLiteral("Orvane Figures"));
    font.setPixelSize(13);
    // As drawn: hinting would move the letters of each size to whole pixels, and with them the widths.
    font.setHintingPreference(QFont::PreferNoHinting);
    QGuiApplication::setFont(font);
}

} // namespace orvane
