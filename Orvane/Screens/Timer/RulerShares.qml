// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane.Components

// A split entry on the ruler: its parts beside each other, in their proportion.
Row {
    id: shares

    required property var parts

    readonly property real sum: parts.reduce((total, part) => total + part.share, 0)

    Repeater {
        model: shares.parts

        Rectangle {
            id: part

            required property var modelData
            readonly property color shade: Theme.projectColor(modelData.color)

            width: shares.width * modelData.share / shares.sum
            height: shares.height
            color: Theme.tintOf(shade)

            Rectangle {
                anchors.bottom: parent.bottom
                width: parent.width
                height: Math.min(3, parent.height)
                color: part.shade
            }
        }
    }
}
