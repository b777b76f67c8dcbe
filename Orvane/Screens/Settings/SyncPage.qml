// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What waits to be sent, and where it goes.
SettingsSheet {
    id: page

    required property AppModel app
    required property SettingsModel settings

    readonly property SyncDetails sync: settings.sync
    readonly property SyncStatus status: app.sync

    SettingGroup {
        title: qsTr("Server")
        about: qsTr("Keeps your time, and hands it to your other devices.")

        Label {
            height: 28
            width: parent.width
            saidByPeople: true
            text: page.sync.address === "" ? page.sync.place : qsTr("%1, %2").arg(page.sync.place).arg(page.sync.address)
        }
    }
    SettingGroup {
        title: qsTr("Changes")
        about: qsTr("What you do is kept on this computer first. It is sent by itself as soon as the server answers.")
        isLast: true

        Column {
            width: parent.width
            spacing: 8

            Label {
                width: parent.width
                text: page.status.subtitle === "" ? page.status.title : qsTr("%1. %2").arg(page.status.title).arg(page.status.subtitle)
                font.weight: Font.Medium
            }
            Label {
                width: parent.width
                visible: text !== ""
                type: Label.Type.Small
                text: page.sync.sentAt
                color: Theme.ink2
            }
            Rectangle {
                width: parent.width
                height: rows.height
                visible: page.sync.waiting.length > 0
                radius: Theme.radiusCard
                color: "transparent"
                border.color: Theme.line2
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Changes waiting")

                Column {
                    id: rows
                    width: parent.width

                    Repeater {
                        model: page.sync.waiting

                        Item {
                            id: row

                            required property string modelData

                            width: rows.width
                            height: 32

                            Icon {
                                x: 12
                                anchors.verticalCenter: parent.verticalCenter
                                name: "pending"
                                color: Theme.warning
                            }
                            Label {
                                x: 36
                                anchors.verticalCenter: parent.verticalCenter
                                width: parent.width - x - 12
                                saidByPeople: true
                                text: row.modelData
                            }
                        }
                    }
                    Label {
                        x: 36
                        height: 32
                        visible: page.sync.more > 0
                        text: qsTr("and %1 more").arg(page.sync.more)
                        color: Theme.ink2
                    }
                }
            }
            ActionButton {
                busy: page.sync.isSending
                text: qsTr("Send Now")
                onClicked: page.sync.sendNow()
            }
        }
    }
}
