// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Taking one's data along, and ending the account.
Column {
    id: data

    required property AccountDetails account
    // Whether the account shall go is being asked.
    required property bool asks

    signal asked(bool wanted)

    onAsksChanged: {
        data.account.forgetProblems();
        email.text = "";
        password.text = "";
        if (asks && email.visible)
            email.forceActiveFocus();
        else if (asks)
            keep.forceActiveFocus();
    }

    Rectangle {
        width: parent.width
        height: rows.height
        radius: Theme.radiusCard
        color: "transparent"
        border.color: Theme.line2

        Column {
            id: rows

            width: parent.width

            Item {
                width: parent.width
                height: 44

                Label {
                    x: 13
                    width: parent.width - x - exporter.width - 24
                    height: parent.height
                    text: qsTr("Everything the server keeps about you, as one archive")
                }
                ActionButton {
                    id: exporter

                    anchors.right: parent.right
                    anchors.rightMargin: Theme.space12
                    anchors.verticalCenter: parent.verticalCenter
                    iconName: "download"
                    busy: data.account.isExporting
                    enabled: !busy && !data.account.isAway
                    text: busy ? qsTr("Exporting…") : qsTr("Export")
                    onClicked: data.account.exportData()
                }
            }
            Rectangle {
                width: parent.width
                height: 1
                color: Theme.line
            }
            Item {
                width: parent.width
                height: 44
                visible: !data.asks

                Label {
                    x: 13
                    width: parent.width - x - remover.width - 24
                    height: parent.height
                    text: qsTr("Account, entries and links, everywhere and for good")
                }
                ActionButton {
                    id: remover

                    anchors.right: parent.right
                    anchors.rightMargin: Theme.space12
                    anchors.verticalCenter: parent.verticalCenter
                    dangerous: true
                    enabled: !data.account.isAway
                    text: qsTr("Delete Account…")
                    onClicked: data.asked(true)
                }
            }
            Column {
                x: 13
                width: parent.width - 2 * x
                visible: data.asks
                topPadding: Theme.space12
                bottomPadding: Theme.space12
                spacing: Theme.space8

                Label {
                    width: parent.width
                    wrapMode: Text.Wrap
                    text: data.account.hasSignIn ? qsTr("Your account goes with all its time, here and on every device. To confirm, type your email and password.") : qsTr("All time on this computer goes for good.")
                }
                TextEntry {
                    id: email

                    width: Math.min(360, parent.width)
                    visible: data.account.hasSignIn
                    placeholderText: qsTr("Your email")
                    onAccepted: password.forceActiveFocus()
                    Keys.onEscapePressed: data.asked(false)
                }
                TextEntry {
                    id: password

                    width: Math.min(360, parent.width)
                    visible: data.account.hasPassword
                    placeholderText: qsTr("Your password")
                    echoMode: TextInput.Password
                    Accessible.passwordEdit: true
                    Keys.onEscapePressed: data.asked(false)
                }
                Label {
                    width: parent.width
                    visible: text !== ""
                    type: Label.Type.Small
                    wrapMode: Text.Wrap
                    color: Theme.danger
                    text: data.account.deletionProblem
                    Accessible.role: Accessible.AlertMessage
                }
                Row {
                    spacing: Theme.space8

                    ActionButton {
                        id: keep

                        text: qsTr("Keep the Account")
                        keys: "Esc"
                        onClicked: data.asked(false)
                        Keys.onEscapePressed: data.asked(false)
                    }
                    ActionButton {
                        dangerous: true
                        busy: data.account.isDeleting
                        text: qsTr("Delete for Good")
                        onClicked: data.account.deleteAccount(email.text, password.text)
                    }
                }
            }
        }
    }
}
