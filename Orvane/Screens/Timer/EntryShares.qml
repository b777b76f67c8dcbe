// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane.Components

// Where the parts of a split entry went: their colours at the row's edge, and in the place of the project how many there
// are.
Item {
    id: root

    required property LineData line
    // Of the project.
    required property Item place

    readonly property var shares: line.sharesOf(line.parts)

    Column {
        y: 8

        Repeater {
            model: root.shares

            Rectangle {
                required property var modelData

                width: 3
                height: 20 * modelData.share / 100
                color: modelData.color
            }
        }
    }
    ShareBar {
        id: bar
        x: root.place.x
        anchors.verticalCenter: parent.verticalCenter
        width: root.line.columns.isWide ? 72 : 32
        shares: root.shares
    }
    Label {
        anchors.left: bar.right
        anchors.leftMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        width: root.place.x + root.place.width - x
        text: qsTr("%1 projects").arg(root.line.partCount)
        color: Theme.ink2
    }
}
