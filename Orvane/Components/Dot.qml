// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// The colour of a project: Dot { shade: … }; dashed where there is none.
Rectangle {
    id: dot

    property color shade: Theme.none
    property bool empty: false

    implicitWidth: 8
    implicitHeight: 8
    radius: width / 2
    color: empty ? "transparent" : shade

    Loader {
        active: dot.empty
        anchors.fill: parent
        source: "DashedDot.qml"
    }
}
