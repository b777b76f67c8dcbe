// SPDX-License-Identifier: GPL-3.0-or-later
// Shows every component in each of its states: orvane-gallery [--picture FILE] [--dark] [--scale FACTOR]
// [--page NAME] With a picture it saves what it would show, and ends. A warning of QML makes it fail.
#include "Fonts.h"

#include <QGuiApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>

namespace {

bool warned = false;

void noteWarnings(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    warned = warned || type != QtDebugMsg;
    QTextStream(stderr) << message << Qt::endl;
}

QString argumentAfter(const QStringList &arguments, const QString &option)
{
    const qsizetype at = arguments.indexOf(option);
    return at < 0 ? QString() : arguments.value(at + 1);
}

} // namespace

int main(int argc, char **argv)
{
    for (int i = 1; i + 1 < argc; ++i) {
        // Has to stand in the environment before the application is made.
        if (qstrcmp(argv[i], "--scale") == 0) {
            qputenv("QT_SCALE_FACTOR", argv[i + 1]);
        }
    }
    QGuiApplication application(argc, argv);
    qInstallMessageHandler(noteWarnings);
    const QStringList arguments = application.arguments();
    orvane::loadFonts();
    QQmlApplicationEngine engine;
    // Qt 6.4 does not look there by itself.
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    const QString page = argumentAfter(arguments, QStringLiteral("--page"));
    engine.setInitialProperties({{QStringLiteral("dark"), arguments.contains(QStringLiteral("--dark"))},
                                 {QStringLiteral("page"), page.isEmpty() ? QStringLiteral("States") : page}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Orvane/Gallery/Gallery.qml")));
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window) {
        return 1;
    }
    const QString picture = argumentAfter(arguments, QStringLiteral("--picture"));
    if (picture.isEmpty()) {
        return QGuiApplication::exec();
    }
    // What opens does so with a movement, which is over by then.
    QTimer::singleShot(600, &application, [&] {
        const bool saved = window->grabWindow().save(picture);
        QGuiApplication::exit(saved && !warned ? 0 : 1);
    });
    return QGuiApplication::exec();
}
