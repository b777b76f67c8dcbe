// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// Something is running.
Rectangle {
    id: live

    property int size: 10

    implicitWidth: size
    implicitHeight: size
    radius: size / 2
    color: Theme.accent

    Rectangle {
        z: -1
        anchors.fill: parent
        anchors.margins: -3
        radius: width / 2
        color: Theme.accentTint
    }
}
