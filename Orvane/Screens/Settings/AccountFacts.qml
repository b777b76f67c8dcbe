// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Name, email and zone.
Column {
    id: facts

    required property SettingsModel settings

    readonly property AccountDetails account: settings.account

    spacing: Theme.space8

    Item {
        width: parent.width
        height: 32

        Label {
            width: 88
            height: parent.height
            color: Theme.ink2
            text: qsTr("Name")
            Accessible.ignored: true
        }
        TextEntry {
            x: 100
            width: parent.width - x
            Accessible.name: qsTr("Name")
            placeholderText: qsTr("How others see you")
            enabled: !facts.account.isAway
            text: facts.account.fullName
            onEditingFinished: facts.account.setFullName(text)
        }
    }
    Item {
        width: parent.width
        height: 32
        visible: facts.account.hasSignIn

        Label {
            width: 88
            height: parent.height
            color: Theme.ink2
            text: qsTr("Email")
        }
        Label {
            id: email

            x: 100
            width: Math.min(implicitWidth, parent.width - x - (confirmed.visible ? 110 : 0))
            height: parent.height
            saidByPeople: true
            text: facts.account.email
        }
        Row {
            id: confirmed

            anchors.left: email.right
            anchors.leftMargin: Theme.space12
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.space4
            visible: facts.account.isConfirmed

            Icon {
                name: "check"
                color: Theme.accent
            }
            Label {
                type: Label.Type.Small
                color: Theme.ink2
                text: qsTr("Confirmed")
            }
        }
    }
    Item {
        width: parent.width
        height: 32

        Label {
            width: 88
            height: parent.height
            color: Theme.ink2
            text: qsTr("Time zone")
        }
        Label {
            x: 100
            width: parent.width - x - open.width
            height: parent.height
            text: facts.account.zone
        }
        QuietButton {
            id: open

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Open Time and Formats")
            onClicked: facts.settings.page = "time"
        }
    }
}
