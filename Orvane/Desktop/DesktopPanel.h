// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/AppModel.h"
#include "Screens/Panel/PanelModel.h"

#include <QQmlEngine>
#include <memory>

class QQuickWindow;

namespace orvane {

/// The panel's window: made when it is first wanted and kept from then on, so that it is there at once the
/// next time. It comes into the upper third of the screen that the pointer is on; when it goes, the window
/// that had the keyboard has it again.
///
/// Owner: the DesktopWindow, with the engine. Thread: the main thread.
class DesktopPanel final : public QObject {
    Q_OBJECT

public:
    DesktopPanel(AppModel &app, QQmlEngine &engine);
    ~DesktopPanel() override;

    /// False when the QML cannot be loaded.
    bool open();
    bool isVisible() const;
    PanelModel &model() { return m_model; }
    /// Null before it is first opened.
    QQuickWindow *window() const { return m_window.get(); }

Q_SIGNALS:
    void visibilityChanged();
    /// It is out of sight, and nothing is under way that could bring it back.
    void finished();

private:
    bool load();
    void place();
    void close();

    AppModel *m_app;
    QQmlEngine *m_engine;
    PanelModel m_model;
    std::unique_ptr<QQuickWindow> m_window;
};

} // namespace orvane
