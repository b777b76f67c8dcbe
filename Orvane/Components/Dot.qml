// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// The colour of a project; dashed where there is none.
Item {
    id: dot

    property color color: Theme.none
    property bool empty: false

    implicitWidth: 8
    implicitHeight: 8

    Rectangle {
        anchors.fill: parent
        visible: !dot.empty
        radius: width / 2
        color: dot.color
    }
    Icon {
        anchors.fill: parent
        visible: dot.empty
        name: dot.empty ? "dashed" : ""
        size: 8
        color: Theme.none
    }
}
