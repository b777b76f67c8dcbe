// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What a passkey wants of its user, with a field for its PIN.
Column {
    id: steps

    required property PasskeyPrompt prompt

    readonly property bool wantsPin: prompt.wantsPin

    spacing: Theme.space8
    visible: prompt.isOpen

    onWantsPinChanged: {
        pin.text = "";
        if (wantsPin)
            pin.forceActiveFocus(Qt.OtherFocusReason);
    }

    Row {
        width: parent.width
        height: 32
        spacing: Theme.space8

        Spinner {
            id: spinner

            anchors.verticalCenter: parent.verticalCenter
            visible: !steps.wantsPin
        }
        Icon {
            id: sign

            anchors.verticalCenter: parent.verticalCenter
            visible: steps.wantsPin
            name: steps.prompt.isWrong ? "warn" : "key"
            color: steps.prompt.isWrong ? Theme.danger : Theme.ink2
        }
        Label {
            width: parent.width - stop.width - sign.width - 2 * parent.spacing
            anchors.verticalCenter: parent.verticalCenter
            wrapMode: Text.Wrap
            color: steps.prompt.isWrong ? Theme.danger : Theme.ink2
            text: steps.prompt.sentence
            Accessible.role: Accessible.AlertMessage
        }
        ActionButton {
            id: stop

            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Cancel")
            onClicked: steps.prompt.cancel()
        }
    }
    Row {
        width: parent.width
        spacing: Theme.space8
        visible: steps.wantsPin

        TextEntry {
            id: pin

            width: parent.width - give.width - parent.spacing
            placeholderText: qsTr("PIN")
            echoMode: TextInput.Password
            // Qt tells no name of a field whose text is secret.
            Accessible.description: placeholderText
            Accessible.passwordEdit: true
            onAccepted: steps.prompt.givePin(text)
            Keys.onEscapePressed: steps.prompt.cancel()
        }
        ActionButton {
            id: give

            tall: true
            enabled: pin.text !== ""
            text: qsTr("Go On")
            onClicked: steps.prompt.givePin(pin.text)
        }
    }
}
