// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "AppModel/AppModel.h"

#include <QtQml/qqml.h>

namespace orvane::qml {

// The view models as QML knows them: they themselves know nothing of QML.

struct AppModelType {
    Q_GADGET
    QML_FOREIGN(orvane::AppModel)
    QML_NAMED_ELEMENT(AppModel)
    QML_UNCREATABLE("made by the program")
};

} // namespace orvane::qml
