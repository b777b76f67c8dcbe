// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop/DesktopWindow.h"

#include "Fonts.h"

#include <QQuickWindow>

namespace orvane {

DesktopWindow::DesktopWindow(AppModel::Options options)
    : m_app(std::move(options))
    , m_timer(m_app)
    , m_projects(m_app)
    , m_settings(m_app)
    , m_signIn(m_app)
    , m_places(m_app)
    , m_panel(m_app, m_engine)
{
    loadFonts();
    // Where our modules lie; Qt 6.4 does not look there by itself.
    m_engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    connect(&m_panel, &DesktopPanel::visibilityChanged, this, &DesktopWindow::followVisibility);
    connect(&m_panel, &DesktopPanel::finished, this, [this] {
        if (m_window == nullptr)
            Q_EMIT panelFinishedAlone();
    });
    connect(&m_panel.model(), &PanelModel::windowWanted, this, &DesktopWindow::raise);
}

DesktopWindow::~DesktopWindow()
{
    // It goes with the engine, after the panel that its visibility is seen beside.
    if (m_window != nullptr)
        m_window->disconnect(this);
}

void DesktopWindow::openAccount()
{
    if (!m_isAccountOpened)
        m_app.open();
    m_isAccountOpened = true;
}

bool DesktopWindow::show()
{
    openAccount();
    if (m_window != nullptr)
        return true;
    m_engine.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&m_app)},
                                   {QStringLiteral("timer"), QVariant::fromValue(&m_timer)},
                                   {QStringLiteral("signIn"), QVariant::fromValue(&m_signIn)},
                                   {QStringLiteral("places"), QVariant::fromValue(&m_places)},
                                   {QStringLiteral("panel"), QVariant::fromValue(&m_panel.model())},
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
    if (!show())
        return;
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
}

bool DesktopWindow::openPanel()
{
    openAccount();
    const bool isOpen = m_panel.open();
    followVisibility();
    return isOpen;
}

/// Keeps the second hand still while nothing can be seen.
void DesktopWindow::followVisibility()
{
    const bool isWindowSeen =
        m_window != nullptr && m_window->isVisible() && m_window->visibility() != QWindow::Minimized;
    m_app.tick().setVisible(isWindowSeen || m_panel.isVisible());
}

} // namespace orvane
