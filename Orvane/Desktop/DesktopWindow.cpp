// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop/DesktopWindow.h"

#include "Fonts.h"

#include <QQuickWindow>

namespace orvane {

DesktopWindow::DesktopWindow(AppModel::Options options)
    : m_app(std::move(options)), m_timer(m_app), m_projects(m_app), m_settings(m_app)
{
    loadFonts();
    // Where our modules lie; Qt 6.4 does not look there by itself.
    m_engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
}

DesktopWindow::~DesktopWindow() = default;

bool DesktopWindow::show()
{
    m_app.open();
    m_engine.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&m_app)},
                                   {QStringLiteral("timer"), QVariant::fromValue(&m_timer)},
                                   {QStringLiteral("projects"), QVariant::fromValue(&m_projects)},
                                   {QStringLiteral("settings"), QVariant::fromValue(&m_settings)}});
    m_engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Orvane/Main.qml")));
    if (!m_engine.rootObjects().isEmpty())
        m_window = qobject_cast<QQuickWindow *>(m_engine.rootObjects().constFirst());
    if (m_window == nullptr)
        return false;
    connect(m_window, &QWindow::visibilityChanged, this, &DesktopWindow::followVisibility);
    followVisibility();
    return true;
}

void DesktopWindow::raise()
{
    if (m_window == nullptr)
        return;
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

/// Keeps the second hand still while the window cannot be seen.
void DesktopWindow::followVisibility()
{
    m_app.tick().setVisible(m_window->isVisible() && m_window->visibility() != QWindow::Minimized);
}

} // namespace orvane
