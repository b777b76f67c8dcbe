// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/AppModel.h"
#include "Screens/Projects/ProjectsModel.h"
#include "Screens/Settings/SettingsModel.h"
#include "Screens/Timer/TimerModel.h"

#include <QQmlApplicationEngine>

class QQuickWindow;

namespace orvane {

/// The application with its window: the models, and the QML that draws them.
///
/// Owner: the program, or a test that draws. Thread: the main thread. `close` before it goes.
class DesktopWindow final : public QObject {
    Q_OBJECT

public:
    explicit DesktopWindow(AppModel::Options options);
    ~DesktopWindow() override;

    /// Makes the window and begins to open the account. False when the QML cannot be loaded.
    bool show();
    /// Brings the window to the front.
    void raise();
    Task<> close() { return m_app.close(); }

    AppModel &app() { return m_app; }
    TimerModel &timer() { return m_timer; }
    ProjectsModel &projects() { return m_projects; }
    SettingsModel &settings() { return m_settings; }
    /// Null before it is shown.
    QQuickWindow *window() const { return m_window; }

private:
    void followVisibility();

    AppModel m_app;
    TimerModel m_timer;
    ProjectsModel m_projects;
    SettingsModel m_settings;
    QQmlApplicationEngine m_engine;
    QQuickWindow *m_window = nullptr;
};

} // namespace orvane
