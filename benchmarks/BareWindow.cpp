// SPDX-License-Identifier: GPL-3.0-or-later
// An empty Qt Quick window: when its first frame was there, and what it takes of memory, as one line of JSON.
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>
#include <unistd.h>

int main(int argc, char **argv)
{
    QElapsedTimer clock;
    clock.start();
    qputenv("QT_QUICK_BACKEND", "software");
    const QGuiApplication application(argc, argv);
    QQmlApplicationEngine engine;
    engine.loadData("import QtQuick\nWindow { width: 1440; height: 900; visible: true }");
    auto *window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (window == nullptr)
        return 1;
    double firstFrame = 0;
    QObject::connect(window, &QQuickWindow::frameSwapped, window, [&] {
        if (firstFrame == 0)
            firstFrame = static_cast<double>(clock.nsecsElapsed()) / 1e6;
    });
    QTimer::singleShot(1500, &application, &QCoreApplication::quit);
    QGuiApplication::exec();
    QFile file(QStringLiteral("/proc/self/statm"));
    if (!file.open(QIODevice::ReadOnly))
        return 1;
    const double memory =
        file.readAll().split(' ').at(1).toDouble() * static_cast<double>(sysconf(_SC_PAGESIZE)) / 1e6;
    QTextStream(stdout) << "{\"firstFrame\":" << firstFrame << ",\"memory\":" << memory << "}" << Qt::endl;
    return firstFrame > 0 ? 0 : 1;
}
