// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QColor>
#include <QImage>
#include <QObject>
#include <QSizeF>
#include <QString>
#include <QUrl>
#include <QtQml/qqmlregistration.h>

class QJSEngine;
class QQmlEngine;

namespace orvane {

/// Where QML finds the pictures that are drawn in C++: icons in a colour, and shadows. The engine makes the
/// one there is; main thread. The engine keeps what was drawn, for each colour and size.
class Pictures : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    static Pictures *create(QQmlEngine *engine, QJSEngine *);

    /// The icon `name` (a file in icons/) in one colour. For an Image with a sourceSize.
    Q_INVOKABLE QUrl icon(const QString &name, const QColor &color) const;

    /// The shadow of a raised surface of that size as the nine parts of a BorderImage, which reaches
    /// `shadowReach` beyond the surface on each side. Level 2 is for menus, cards and notices, 3 for sheets.
    /// All surfaces that are large enough share one picture.
    Q_INVOKABLE QUrl shadow(int level, int radius, const QSizeF &size, bool dark) const;
    Q_INVOKABLE static int shadowReach(int level);
    /// How much of the picture does not stretch at either end of the surface's `length`.
    Q_INVOKABLE static int shadowBorder(int level, int radius, qreal length);

    static QImage drawIcon(const QString &name, const QColor &color, const QSize &size);
    static QImage drawShadow(int level, int radius, const QSize &surface, bool dark);

private:
    Pictures() = default; // only `create` also tells the engine who draws
};

} // namespace orvane
