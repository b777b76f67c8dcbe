// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// What a raised surface throws, and the fine ring around it. Stands behind the surface and has its size.
Item {
    id: shadow

    property int level: 2
    property int radius: Theme.radiusCard

    BorderImage {
        readonly property int reach: Pictures.shadowReach(shadow.level)
        readonly property int sideEdge: Pictures.shadowBorder(shadow.level, shadow.radius, shadow.width)
        readonly property int topEdge: Pictures.shadowBorder(shadow.level, shadow.radius, shadow.height)

        anchors.fill: parent
        anchors.margins: -reach
        source: !shadow.visible || shadow.width <= 0 || shadow.height <= 0 ? "" : Pictures.shadow(shadow.level, shadow.radius, Qt.size(shadow.width, shadow.height), Theme.dark)
        border {
            left: sideEdge
            top: topEdge
            right: sideEdge
            bottom: topEdge
        }
    }
    Rectangle {
        anchors.fill: parent
        anchors.margins: -1
        radius: shadow.radius + 1
        color: Theme.ring
    }
}
