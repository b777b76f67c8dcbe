// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/AppModel.h"
#include "Desktop/DesktopPanel.h"
#include "Screens/Projects/ProjectsModel.h"
#include "Screens/Settings/SettingsModel.h"
#include "Screens/Shell/PlacesModel.h"
#include "Screens/SignIn/SignInModel.h"
#include "Screens/Timer/TimerModel.h"

#include <QQmlApplicationEngine>

class QQuickWindow;

namespace orvane {

/// The application with its window and its panel: the models, and the QML that draws them. Either can be
/// there without the other.
///
/// Owner: the program, or a test that draws. Thread: the main thread. `close` before it goes.
class DesktopWindow final : public QObject {
    Q_OBJECT

public:
    explicit DesktopWindow(AppModel::Options options);
    ~DesktopWindow() override;

    /// Makes the window, if it is not there yet, and begins to open the account. False when the QML cannot be
    /// loaded.
    bool show();
    /// Brings the window to the front, making it where only the panel was there.
    void raise();
    /// Opens the panel, and the account where it is not open yet. False when the QML cannot be loaded.
    bool openPanel();
    Task<> close() { return m_app.close(); }

    AppModel &app() { return m_app; }
    TimerModel &timer() { return m_timer; }
    SignInModel &signIn() { return m_signIn; }
    PlacesModel &places() { return m_places; }
    DesktopPanel &panel() { return m_panel; }
    ProjectsModel &projects() { return m_projects; }
    SettingsModel &settings() { return m_settings; }
    /// Null before it is shown.
    QQuickWindow *window() const { return m_window; }

Q_SIGNALS:
    /// The panel was all that was wanted, and has done its part.
    void panelFinishedAlone();

private:
    void openAccount();
    void followVisibility();

    AppModel m_app;
    TimerModel m_timer;
    ProjectsModel m_projects;
    SettingsModel m_settings;
    SignInModel m_signIn;
    PlacesModel m_places;
    QQmlApplicationEngine m_engine;
    DesktopPanel m_panel;
    QQuickWindow *m_window = nullptr;
    bool m_isAccountOpened = false;
};

} // namespace orvane
