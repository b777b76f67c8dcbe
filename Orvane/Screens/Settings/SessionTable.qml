// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The devices that are signed in, this one first.
Column {
    id: table

    required property AccountDetails account

    readonly property var sessions: account.sessions

    spacing: Theme.space8

    Rectangle {
        width: parent.width
        height: rows.height
        visible: table.sessions.length > 0
        radius: Theme.radiusCard
        color: "transparent"
        border.color: Theme.line2
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Sessions")

        Column {
            id: rows

            width: parent.width

            Repeater {
                model: table.sessions

                Item {
                    id: row

                    required property int index
                    required property var modelData

                    readonly property int rest: width - 40 - button.width

                    width: rows.width
                    height: 36
                    Accessible.role: Accessible.ListItem
                    Accessible.name: qsTr("%1, %2, %3").arg(modelData.device).arg(modelData.since).arg(modelData.used)

                    Rectangle {
                        width: parent.width
                        height: 1
                        visible: row.index > 0
                        color: Theme.line
                    }
                    Icon {
                        x: 12
                        anchors.verticalCenter: parent.verticalCenter
                        name: "mac"
                    }
                    Label {
                        id: device

                        x: 40
                        anchors.verticalCenter: parent.verticalCenter
                        width: Math.min(implicitWidth, row.rest * 0.31)
                        saidByPeople: true
                        text: row.modelData.device
                        Accessible.ignored: true
                    }
                    Label {
                        anchors.left: device.right
                        anchors.leftMargin: Theme.space8
                        anchors.verticalCenter: parent.verticalCenter
                        visible: row.modelData.isCurrent && row.width > 560
                        type: Label.Type.Small
                        font.weight: Font.Medium
                        color: Theme.accent
                        text: qsTr("This device")
                    }
                    Label {
                        x: row.width > 560 ? 236 : 40 + row.rest * 0.33
                        anchors.verticalCenter: parent.verticalCenter
                        visible: row.width > 420
                        type: Label.Type.Small
                        color: Theme.ink2
                        text: row.modelData.since
                        Accessible.ignored: true
                    }
                    Label {
                        x: row.width > 560 ? 236 + (row.width - 236 - button.width) * 0.4 : 40 + row.rest * 0.68
                        width: row.width - x - button.width - Theme.space8
                        anchors.verticalCenter: parent.verticalCenter
                        saidByPeople: true
                        type: Label.Type.Small
                        color: Theme.ink2
                        text: row.modelData.used
                        Accessible.ignored: true
                    }
                    QuietButton {
                        id: button

                        anchors.right: parent.right
                        anchors.rightMargin: Theme.space8
                        anchors.verticalCenter: parent.verticalCenter
                        visible: !row.modelData.isCurrent
                        text: qsTr("Sign Out")
                        Accessible.name: qsTr("Sign out %1").arg(row.modelData.device)
                        onClicked: table.account.signOutSession(row.modelData.id)
                    }
                }
            }
        }
    }
    ActionButton {
        visible: table.sessions.length > 1
        text: qsTr("Sign Out All Others")
        onClicked: table.account.signOutOthers()
    }
    Label {
        width: parent.width
        visible: text !== ""
        type: Label.Type.Small
        wrapMode: Text.Wrap
        color: Theme.ink2
        text: table.account.sessionsProblem !== "" ? table.account.sessionsProblem : table.sessions.length === 0 ? qsTr("Asking the server…") : ""
    }
}
