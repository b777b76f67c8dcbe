// SPDX-License-Identifier: GPL-3.0-or-later
// An empty Qt Quick window: when its first frame was there, and what it takes of memory, as one line of JSON.
#include <QFile>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>
#include <ctime>
#include <unistd.h>

namespace {

double now()
{
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

} // namespace

int main(int argc, char **argv)
{
    // The moment at which the process was asked for, on the same clock.
    const double began = qEnvironmentVariable("ORVANE_BENCHMARK_BEGAN").toDouble();
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
            firstFrame = 1e3 * (now() - began);
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
