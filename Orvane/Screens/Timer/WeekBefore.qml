// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Below the list: one more week, or why it could not be had.
Item {
    id: week

    required property TimerModel timer

    height: 72

    ActionButton {
        anchors.centerIn: parent
        visible: week.timer.weekProblem === ""
        text: qsTr("Load the Week Before")
        iconName: "down"
        busy: week.timer.isLoadingMore
        onClicked: week.timer.loadWeekBefore()
    }
    Rectangle {
        anchors.verticalCenter: parent.verticalCenter
        x: 4
        width: parent.width - 8
        height: 44
        visible: week.timer.weekProblem !== ""
        color: "transparent"
        radius: Theme.radiusCard
        border.color: Theme.line2

        Icon {
            x: 16
            anchors.verticalCenter: parent.verticalCenter
            name: "warn"
            color: Theme.danger
        }
        Label {
            x: 40
            anchors.verticalCenter: parent.verticalCenter
            text: week.timer.weekProblem
            Accessible.role: Accessible.AlertMessage
        }
        ActionButton {
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Try Again")
            onClicked: week.timer.loadWeekBefore()
        }
    }
}
