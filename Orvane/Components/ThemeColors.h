// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace orvane {

/// Arithmetic on colours for the theme. Pure functions; any thread.
class ThemeColors : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// `over` laid on `ground`, which shows through with 1 - `share` (0 to 1). Opaque.
    Q_INVOKABLE static QColor mix(const QColor &over, const QColor &ground, qreal share);

    /// How a project is drawn: `color` is what the server has ("#rrggbb" or the name of one of our hues), or
    /// what this gave before. One of our hues stays that hue, in the shade of the scheme; of any other the
    /// hue is kept, at a lightness that is legible on the scheme's content. What is no colour gives the one
    /// for no project.
    Q_INVOKABLE static QColor project(const QString &color, bool dark);

    /// Contrast ratio as WCAG 2 defines it, 1 to 21.
    static double contrast(const QColor &one, const QColor &other);
};

} // namespace orvane
