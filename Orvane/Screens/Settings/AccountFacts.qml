// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Name, email and zone.
Column {
    id: facts

    required property SettingsModel settings

    readonly property AccountDetails account: settings.account
    // Where the values begin, whatever their names are in another language.
    readonly property int lead: Math.max(100, Math.ceil(Math.max(name.implicitWidth, address.implicitWidth, zone.implicitWidth)) + 12)

    spacing: Theme.space8

    Item {
        width: parent.width
        height: 32

        Label {
            id: name

            height: parent.height
            color: Theme.ink2
            text: qsTr("Name")
            Accessible.ignored: true
        }
        TextEntry {
            x: facts.lead
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
            id: address

            height: parent.height
            color: Theme.ink2
            text: qsTr("Email")
        }
        Label {
            id: email

            x: facts.lead
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
            id: zone

            height: parent.height
            color: Theme.ink2
            text: qsTr("Time zone")
        }
        Label {
            x: facts.lead
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
