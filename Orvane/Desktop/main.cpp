// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"

#include <QGuiApplication>
#include <QQmlApplicationEngine>

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    orvane::AppModel app(nullptr);
    QQmlApplicationEngine engine;
    engine.setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&app)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Orvane/Main.qml")));
    return engine.rootObjects().isEmpty() ? 1 : application.exec();
}
