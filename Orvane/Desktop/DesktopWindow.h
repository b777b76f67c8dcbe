// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/AppModel.h"
#include "Desktop/DesktopPanel.h"
#include "Screens/Projects/ProjectsModel.h"
#include "Screens/Review/ReviewModel.h"
#include "Screens/Settings/SettingsModel.h"
#include "Screens/Shell/PlacesModel.h"
#include "Screens/SignIn/SignInModel.h"
#include "Screens/Timer/TimerModel.h"

#include <QQmlComponent>
#include <QQmlEngine>
#include <QTimer>
#include <memory>

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

    /// Begins to open the account and to make the window, if it is not there yet. It comes with the entries
    /// that are kept on this computer, and without them where they are not there at once.
    void show();
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
    ReviewModel &review() { return m_review; }
    SettingsModel &settings() { return m_settings; }
    /// Null before it is shown.
    QQuickWindow *window() const { return m_window.get(); }

Q_SIGNALS:
    /// The window's QML cannot be loaded.
    void failed();
    /// The panel was all that was wanted, and has done its part.
    void panelFinishedAlone();

private:
    void openAccount();
    void makeWindow();
    void followVisibility();

    AppModel m_app;
    TimerModel m_timer;
    ReviewModel m_review;
    ProjectsModel m_projects;
    SettingsModel m_settings;
    SignInModel m_signIn;
    PlacesModel m_places;
    QQmlEngine m_engine;
    QQmlComponent m_drawing;
    /// For the entries, before the window comes without them.
    QTimer m_patience;
    DesktopPanel m_panel;
    std::unique_ptr<QQuickWindow> m_window;
    bool m_isAccountOpened = false;
};

} // namespace orvane
