// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

Window {
    id: window

    required property AppModel app

    width: 1440
    height: 900
    minimumWidth: 720
    minimumHeight: 450
    visible: true
    title: qsTr("Orvane")
    color: Theme.content
}
