// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Beside the list where there is room: what today and the week come to.
Rectangle {
    id: rail

    required property TimerModel timer

    color: Theme.chrome
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Totals")

    Rectangle {
        width: 1
        height: parent.height
        color: Theme.line
    }
    Item {
        x: 20
        width: parent.width - 40
        height: 72

        Column {
            anchors.verticalCenter: parent.verticalCenter

            Label {
                type: Label.Type.Small
                text: qsTr("Today")
                color: Theme.ink2
            }
            Label {
                type: Label.Type.Title
                text: rail.timer.todayTotal
            }
        }
        Column {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter

            Label {
                anchors.right: parent.right
                type: Label.Type.Small
                text: qsTr("This week")
                color: Theme.ink2
            }
            Label {
                anchors.right: parent.right
                type: Label.Type.Title
                text: rail.timer.weekTotal
            }
        }
    }
    Rectangle {
        y: 71
        width: parent.width
        height: 1
        color: Theme.line
    }
}
