// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The password that is, and the one that shall be.
Column {
    id: change

    required property AccountDetails account

    readonly property bool isNarrow: width < 520 || next.wanted > Math.floor((width - button.width - 2 * Theme.space8) / 2)
    readonly property int fieldWidth: isNarrow ? width : Math.floor((width - button.width - 2 * Theme.space8) / 2)

    function submit() {
        change.account.changePassword(current.text, next.text);
    }

    spacing: Theme.space8

    Connections {
        target: change.account

        function onPasswordChanged() {
            current.text = "";
            next.text = "";
        }
    }
    Flow {
        width: parent.width
        spacing: Theme.space8

        TextEntry {
            id: current

            width: change.fieldWidth
            placeholderText: qsTr("Current password")
            echoMode: TextInput.Password
            // Qt tells no name of a field whose text is secret.
            Accessible.description: placeholderText
            Accessible.passwordEdit: true
            enabled: !change.account.isAway && !change.account.isChangingPassword
            onAccepted: next.forceActiveFocus()
        }
        TextEntry {
            id: next

            readonly property real wanted: hint.advanceWidth + leftPadding + rightPadding

            TextMetrics {
                id: hint

                font: next.font
                text: next.placeholderText
            }

            width: change.fieldWidth
            placeholderText: qsTr("New password, at least 8 characters")
            echoMode: TextInput.Password
            // Qt tells no name of a field whose text is secret.
            Accessible.description: placeholderText
            Accessible.passwordEdit: true
            enabled: current.enabled
            onAccepted: change.submit()
        }
        ActionButton {
            id: button

            tall: true
            text: qsTr("Change Password")
            busy: change.account.isChangingPassword
            enabled: !busy && current.text !== "" && next.text !== ""
            onClicked: change.submit()
        }
    }
    Label {
        width: parent.width
        visible: text !== ""
        type: Label.Type.Small
        wrapMode: Text.Wrap
        color: Theme.danger
        text: change.account.passwordProblem
        Accessible.role: Accessible.AlertMessage
    }
}
