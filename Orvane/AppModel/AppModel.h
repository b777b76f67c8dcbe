// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

namespace orvane {

class AppModel final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString name READ name CONSTANT)

public:
    explicit AppModel(QObject *parent);
    QString name() const { return QStringLiteral("x"); }
};

} // namespace orvane
