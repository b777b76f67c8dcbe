// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "DesktopSettings.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace orvane {

/// Whether the window is light or dark, and whether anything in it moves. The QML engine makes the one there
/// is; main thread.
class Appearance : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(orvane::Appearance::Scheme scheme READ scheme WRITE setScheme NOTIFY schemeChanged)
    Q_PROPERTY(bool isDark READ isDark NOTIFY isDarkChanged)
    Q_PROPERTY(bool keepsStill READ keepsStill WRITE setKeepsStill NOTIFY keepsStillChanged)
    Q_PROPERTY(bool reducedMotion READ reducedMotion NOTIFY reducedMotionChanged)

public:
    /// Capitals, because QML knows no other enumerators.
    enum class Scheme { System, Light, Dark };
    Q_ENUM(Scheme)

    explicit Appearance(QObject *parent = nullptr);

    /// What the user chose; System follows the desktop's settings, and its palette where those say nothing.
    Scheme scheme() const { return m_scheme; }
    void setScheme(Scheme scheme);
    /// The user chose that nothing moves, whatever the desktop says.
    bool keepsStill() const { return m_keepsStill; }
    void setKeepsStill(bool keepsStill);
    bool isDark() const { return m_isDark; }
    bool reducedMotion() const { return m_reducedMotion; }

Q_SIGNALS:
    void schemeChanged();
    void keepsStillChanged();
    void isDarkChanged();
    void reducedMotionChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void update();

    DesktopSettings m_desktop;
    Scheme m_scheme = Scheme::System;
    bool m_keepsStill = false;
    bool m_isDark = false;
    bool m_reducedMotion = false;
};

} // namespace orvane
