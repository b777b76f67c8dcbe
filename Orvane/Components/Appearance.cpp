// SPDX-License-Identifier: GPL-3.0-or-later
#include "Appearance.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QStyleHints>

namespace orvane {

namespace {

bool paletteIsDark()
{
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightnessF() < palette.color(QPalette::WindowText).lightnessF();
}

} // namespace

Appearance::Appearance(QObject *parent) : QObject(parent)
{
    // Nothing moves by itself except the clock, and a blinking cursor wakes the processor eight times a
    // second.
    QGuiApplication::styleHints()->setCursorFlashTime(0);
    qApp->installEventFilter(this);
    connect(&m_desktop, &DesktopSettings::changed, this, &Appearance::update);
    m_isDark = paletteIsDark();
    m_desktop.start();
}

void Appearance::setScheme(Scheme scheme)
{
    if (scheme == m_scheme) {
        return;
    }
    m_scheme = scheme;
    Q_EMIT schemeChanged();
    update();
}

void Appearance::setKeepsStill(bool keepsStill)
{
    if (keepsStill == m_keepsStill) {
        return;
    }
    m_keepsStill = keepsStill;
    Q_EMIT keepsStillChanged();
    update();
}

bool Appearance::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp) {
        update();
    }
    return QObject::eventFilter(watched, event);
}

void Appearance::update()
{
    const bool dark = m_scheme == Scheme::System ? m_desktop.prefersDark().value_or(paletteIsDark())
                                                 : m_scheme == Scheme::Dark;
    if (std::exchange(m_isDark, dark) != dark) {
        Q_EMIT isDarkChanged();
    }
    const bool still = m_keepsStill || m_desktop.reducedMotion();
    if (std::exchange(m_reducedMotion, still) != still) {
        Q_EMIT reducedMotionChanged();
    }
}

} // namespace orvane
