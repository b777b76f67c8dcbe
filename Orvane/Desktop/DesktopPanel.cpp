// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop/DesktopPanel.h"

#include <QCursor>
#include <QGuiApplication>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QScreen>
#include <QtQml>

namespace orvane {

DesktopPanel::DesktopPanel(AppModel &app, QQmlEngine &engine) : m_app(&app), m_engine(&engine), m_model(app)
{
    connect(&m_model, &PanelModel::left, this, &DesktopPanel::close);
    connect(&m_model, &PanelModel::wanted, this, &DesktopPanel::open);
    connect(&m_model, &PanelModel::busyChanged, this, [this] {
        if (!isVisible() && !m_model.isBusy())
            Q_EMIT finished();
    });
}

DesktopPanel::~DesktopPanel()
{
    // Nobody is to hear of what the window says as it goes.
    m_model.disconnect(this);
    if (m_window)
        m_window->disconnect(this);
    m_window.reset();
}

bool DesktopPanel::isVisible() const
{
    return m_window && m_window->isVisible();
}

bool DesktopPanel::open()
{
    if (!m_window && !load())
        return false;
    m_model.open();
    if (!m_window->isVisible())
        place();
    m_window->show();
    m_window->raise();
    m_window->requestActivate();
    return true;
}

bool DesktopPanel::load()
{
    QQmlComponent component(m_engine, QUrl(QStringLiteral("qrc:/qt/qml/Orvane/PanelWindow.qml")));
    std::unique_ptr<QObject> made(
        component.createWithInitialProperties({{QStringLiteral("app"), QVariant::fromValue(m_app)},
                                               {QStringLiteral("panel"), QVariant::fromValue(&m_model)}}));
    for (const QQmlError &error : component.errors())
        qmlWarning(nullptr, error);
    auto *window = qobject_cast<QQuickWindow *>(made.get());
    if (window == nullptr)
        return false;
    (void)made.release();
    m_window.reset(window);
    connect(window, &QWindow::visibleChanged, this, &DesktopPanel::visibilityChanged);
    return true;
}

void DesktopPanel::place()
{
    const QScreen *screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr)
        screen = m_window->screen();
    const QRect area = screen->availableGeometry();
    m_window->setPosition(area.x() + (area.width() - m_window->width()) / 2, area.y() + area.height() / 5);
}

void DesktopPanel::close()
{
    if (!m_window)
        return;
    m_window->hide();
    if (!m_model.isBusy())
        Q_EMIT finished();
}

} // namespace orvane
