// SPDX-License-Identifier: GPL-3.0-or-later
#include "Desktop/DesktopProgram.h"

#include "AppModel/AppModel.h"
#include "Screens/Timer/TimerModel.h"
#include "Support/DateText.h"
#include "Time/AppClock.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTextStream>

namespace orvane {

namespace {

/// What the command line says, or the sentence that tells what is wrong with it.
struct DesktopOptions {
    AppModel::Options app;
    QString problem;
};

DesktopOptions readOptions(const QGuiApplication &application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Orvane's window."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOption({QStringLiteral("server"), QStringLiteral("Another server than the one signed in to."),
                      QStringLiteral("URL")});
    parser.addOption(
        {QStringLiteral("data-dir"), QStringLiteral("Another folder for data."), QStringLiteral("DIR")});
    parser.addOption(
        {QStringLiteral("no-server-start"), QStringLiteral("Do not start the server on this computer.")});
    parser.process(application);
    DesktopOptions options;
    options.app.folder = parser.value(QStringLiteral("data-dir")).toStdString();
    if (parser.isSet(QStringLiteral("server")))
        options.app.server = parser.value(QStringLiteral("server")).toStdString();
    options.app.startsServer = !parser.isSet(QStringLiteral("no-server-start"));
    if (options.app.folder.empty() && !Installation::hasUsualPlace())
        options.problem = QStringLiteral("There is no home folder; name one with --data-dir.");
    return options;
}

/// Keeps the second hand still while no window can be seen.
void followVisibility(const QQmlApplicationEngine &engine, AppModel &app)
{
    for (QObject *root : engine.rootObjects()) {
        auto *window = qobject_cast<QQuickWindow *>(root);
        if (window == nullptr)
            continue;
        const auto update = [window, &app] {
            app.tick().setVisible(window->isVisible() && window->visibility() != QWindow::Minimized);
        };
        QObject::connect(window, &QWindow::visibilityChanged, &app, update);
        update();
    }
}

} // namespace

int runDesktop(int argc, char **argv)
{
    QGuiApplication::setApplicationName(QStringLiteral("Orvane"));
    QGuiApplication::setApplicationVersion(QStringLiteral(ORVANE_VERSION));
    QGuiApplication application(argc, argv);
    DesktopOptions options = readOptions(application);
    if (!options.problem.isEmpty()) {
        QTextStream(stderr) << options.problem << Qt::endl;
        return 2;
    }
    AppModel app(std::move(options.app));
    TimerModel timer(app);
    app.open();

    QQmlApplicationEngine engine;
    // Where our modules lie; Qt 6.4 does not look there by itself.
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&app)},
                                 {QStringLiteral("timer"), QVariant::fromValue(&timer)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Orvane/Main.qml")));
    if (engine.rootObjects().isEmpty())
        return 1;
    followVisibility(engine, app);
    const int status = QGuiApplication::exec();
    QCoro::waitFor(app.close());
    return status;
}

} // namespace orvane
