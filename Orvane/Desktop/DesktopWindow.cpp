// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop/DesktopWindow.h"

#include "Fonts.h"

#include <QQuickWindow>
#include <QtQml>

namespace orvane {

DesktopWindow::DesktopWindow(AppModel::Options options)
    : m_app(std::move(options))
    , m_timer(m_app)
    , m_review(m_app, m_timer)
    , m_projects(m_app)
    , m_settings(m_app)
    , m_signIn(m_app)
    , m_places(m_app)
    , m_drawing(&m_engine)
    , m_panel(m_app, m_engine)
{
    // Where our modules lie; Qt 6.4 does not look there by itself.
    m_engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    connect(&m_panel, &DesktopPanel::visibilityChanged, this, &DesktopWindow::followVisibility);
    connect(&m_panel, &DesktopPanel::finished, this, [this] {
        if (m_drawing.isNull())
            Q_EMIT panelFinishedAlone();
    });
    connect(&m_panel.model(), &PanelModel::windowWanted, this, &DesktopWindow::raise);
    connect(m_settings.agents()->asking(), &AgentAsking::wanted, this, &DesktopWindow::raise);
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, &DesktopWindow::makeWindow);
    connect(&m_drawing, &QQmlComponent::statusChanged, this, &DesktopWindow::makeWindow);
    connect(&m_app, &AppModel::phaseChanged, this, &DesktopWindow::makeWindow);
}

DesktopWindow::~DesktopWindow()
{
    // Nobody is to hear of what the window says as it goes.
    if (m_window)
        m_window->disconnect(this);
    m_window.reset();
}

void DesktopWindow::openAccount()
{
    if (m_isAccountOpened)
        return;
    m_isAccountOpened = true;
    m_app.open();
    // The system's list of fonts is read for it, while other threads read the account's store.
    loadFonts();
}

void DesktopWindow::show()
{
    constexpr std::chrono::milliseconds shortWait{150};
    if (m_window || !m_drawing.isNull())
        return;
    m_patience.start(shortWait);
    // Read on a thread of its own, while the account is opened on this one.
    m_drawing.loadUrl(QUrl(QStringLiteral("qrc:/qt/qml/Orvane/Main.qml")), QQmlComponent::Asynchronous);
    openAccount();
}

void DesktopWindow::makeWindow()
{
    const bool mayBeFilledSoon = m_app.phase() == AppModel::Phase::Opening && m_patience.isActive();
    if (m_window || m_drawing.isNull() || m_drawing.isLoading() || mayBeFilledSoon)
        return;
    std::unique_ptr<QObject> made(m_drawing.createWithInitialProperties(
        {{QStringLiteral("app"), QVariant::fromValue(&m_app)},
         {QStringLiteral("timer"), QVariant::fromValue(&m_timer)},
         {QStringLiteral("signIn"), QVariant::fromValue(&m_signIn)},
         {QStringLiteral("places"), QVariant::fromValue(&m_places)},
         {QStringLiteral("panel"), QVariant::fromValue(&m_panel.model())},
         {QStringLiteral("review"), QVariant::fromValue(&m_review)},
         {QStringLiteral("projects"), QVariant::fromValue(&m_projects)},
         {QStringLiteral("settings"), QVariant::fromValue(&m_settings)}}));
    for (const QQmlError &error : m_drawing.errors())
        qmlWarning(nullptr, error);
    auto *window = qobject_cast<QQuickWindow *>(made.get());
    if (window == nullptr) {
        Q_EMIT failed();
        return;
    }
    (void)made.release();
    m_window.reset(window);
    connect(window, &QWindow::visibilityChanged, this, &DesktopWindow::followVisibility);
    followVisibility();
}

void DesktopWindow::raise()
{
    // A window that is made comes up by itself.
    show();
    if (!m_window)
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
        m_window && m_window->isVisible() && m_window->visibility() != QWindow::Minimized;
    m_app.tick().setVisible(isWindowSeen || m_panel.isVisible());
}

} // namespace orvane
