// SPDX-License-Identifier: GPL-3.0-or-later
#include "AppModel/AppModel.h"

namespace orvane {
AppModel::AppModel(QObject *parent) : QObject(parent) {}
}
