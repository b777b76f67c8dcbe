// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// What the pointer lays over a control: more of it while pressed.
Rectangle {
    id: wash

    property bool lit: false
    property bool pressed: false
    property color litColor: Theme.hover
    property color pressedColor: Theme.press

    anchors.fill: parent
    radius: Theme.radiusControl
    color: pressed ? pressedColor : lit ? litColor : "#00000000"

    Behavior on color {
        enabled: Theme.hoverTime > 0
        ColorAnimation {
            duration: Theme.hoverTime
            easing.type: Easing.OutQuad
        }
    }
}
