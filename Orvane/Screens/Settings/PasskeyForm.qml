// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Adding a passkey: a button, and once that was pressed what has to be typed, and what the key wants.
Item {
    id: form

    required property AccountLogins logins
    required property AccountDetails account
    // It is being typed.
    required property bool asks

    signal asked(bool wanted)

    function submit() {
        form.logins.addPasskey(name.text, password.text);
    }

    height: asks ? card.height : button.height

    onAsksChanged: {
        form.logins.forgetProblem();
        name.text = "";
        password.text = "";
        if (asks)
            name.forceActiveFocus(Qt.OtherFocusReason);
        else
            form.logins.prompt.cancel();
    }

    Connections {
        target: form.logins

        function onAdded() {
            form.asked(false);
        }
    }
    ActionButton {
        id: button

        visible: !form.asks
        enabled: !form.account.isAway
        iconName: "key"
        text: qsTr("Add Passkey…")
        onClicked: form.asked(true)
    }
    Rectangle {
        id: card

        width: parent.width
        height: fields.height
        visible: form.asks
        radius: Theme.radiusCard
        color: Theme.chrome
        border.color: Theme.line2

        Column {
            id: fields

            x: 13
            width: parent.width - 2 * x
            topPadding: Theme.space12
            bottomPadding: Theme.space12
            spacing: Theme.space8
            Keys.onEscapePressed: form.asked(false)

            TextEntry {
                id: name

                width: Math.min(360, parent.width)
                enabled: !form.logins.isAdding
                placeholderText: qsTr("A name, such as “Blue key”")
                onAccepted: password.visible ? password.forceActiveFocus() : form.submit()
            }
            TextEntry {
                id: password

                width: Math.min(360, parent.width)
                visible: form.account.hasPassword
                enabled: !form.logins.isAdding
                placeholderText: qsTr("Your password")
                echoMode: TextInput.Password
                // Qt tells no name of a field whose text is secret.
                Accessible.description: placeholderText
                Accessible.passwordEdit: true
                onAccepted: form.submit()
            }
            PasskeySteps {
                width: Math.min(360, parent.width)
                prompt: form.logins.prompt
            }
            Label {
                width: parent.width
                visible: text !== ""
                type: Label.Type.Small
                wrapMode: Text.Wrap
                color: Theme.danger
                text: form.logins.problem
                Accessible.role: Accessible.AlertMessage
            }
            Row {
                spacing: Theme.space8
                visible: !form.logins.prompt.isOpen

                ActionButton {
                    busy: form.logins.isAdding
                    text: qsTr("Add Passkey")
                    onClicked: form.submit()
                }
                ActionButton {
                    text: qsTr("Cancel")
                    keys: "Esc"
                    onClicked: form.asked(false)
                }
            }
        }
    }
}
