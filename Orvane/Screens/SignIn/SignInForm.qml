// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Signing in to the server that was chosen, or making an account there.
FocusScope {
    id: form

    required property SignInModel signIn

    readonly property bool isOwn: signIn.place === SignInModel.OwnServer

    // To the first field that is still empty.
    function take() {
        (email.text === "" ? email : password).forceActiveFocus(Qt.OtherFocusReason);
    }
    function submit() {
        form.signIn.submit(password.text);
    }

    height: column.height

    Connections {
        target: form.signIn

        function onShownChanged() {
            password.text = "";
        }
        function onBrowserWanted(address: string) {
            Qt.openUrlExternally(address);
        }
    }
    Column {
        id: column

        width: parent.width

        Notice {
            width: parent.width
            visible: form.signIn.notice !== ""
            text: form.signIn.notice
            icon: "warn"
            iconColor: Theme.warning
        }
        Item {
            width: 1
            height: form.signIn.notice !== "" ? Theme.space24 : 0
        }
        Label {
            type: Label.Type.Figures
            width: parent.width
            text: form.signIn.isRegistering ? form.isOwn ? qsTr("Create an account on your server") : qsTr("Create an account") : form.isOwn ? qsTr("Sign in to your server") : qsTr("Sign in to Orvane Cloud")
        }
        Item {
            width: 1
            height: Theme.space4
        }
        Row {
            height: 28

            Label {
                anchors.verticalCenter: parent.verticalCenter
                color: Theme.ink2
                text: form.signIn.isRegistering ? qsTr("Have an account?") : form.signIn.takesAccounts ? qsTr("New here?") : form.signIn.isMet ? qsTr("With the account that you have there.") : form.signIn.isAsking ? qsTr("Asking the server…") : qsTr("Waiting for an address that answers.")
            }
            QuietButton {
                anchors.verticalCenter: parent.verticalCenter
                visible: form.signIn.takesAccounts
                accented: true
                text: form.signIn.isRegistering ? qsTr("Sign in") : qsTr("Create an account")
                onClicked: {
                    form.signIn.isRegistering = !form.signIn.isRegistering;
                    email.forceActiveFocus();
                }
            }
        }
        Item {
            width: 1
            height: Theme.space16
        }
        Label {
            type: Label.Type.Small
            color: Theme.ink2
            font.weight: Font.Medium
            text: qsTr("Email")
            Accessible.ignored: true
        }
        Item {
            width: 1
            height: Theme.space4
        }
        TextEntry {
            id: email

            focus: true
            width: parent.width
            implicitHeight: 36
            Accessible.name: qsTr("Email")
            inputMethodHints: Qt.ImhEmailCharactersOnly | Qt.ImhNoAutoUppercase
            enabled: !form.signIn.isBusy
            text: form.signIn.email
            onTextEdited: form.signIn.email = text
            onAccepted: password.text === "" ? password.forceActiveFocus() : form.submit()
        }
        Item {
            width: 1
            height: Theme.space12
        }
        Label {
            type: Label.Type.Small
            color: Theme.ink2
            font.weight: Font.Medium
            text: qsTr("Password")
            Accessible.ignored: true
        }
        Item {
            width: 1
            height: Theme.space4
        }
        TextEntry {
            id: password

            readonly property bool isPlain: eye.checked

            width: parent.width
            implicitHeight: 36
            rightPadding: 40
            Accessible.name: qsTr("Password")
            // Qt tells no name of a field whose text is secret.
            Accessible.description: qsTr("Password")
            Accessible.passwordEdit: true
            echoMode: isPlain ? TextInput.Normal : TextInput.Password
            placeholderText: form.signIn.isRegistering ? qsTr("At least 8 characters") : ""
            enabled: !form.signIn.isBusy
            onAccepted: form.submit()

            IconButton {
                id: eye

                anchors.right: parent.right
                anchors.rightMargin: Theme.space4
                anchors.verticalCenter: parent.verticalCenter
                checkable: true
                iconName: "eyeoff"
                text: qsTr("Show the Password")
            }
        }
        Item {
            width: 1
            height: form.signIn.problem === "" ? 0 : Theme.space8
        }
        Row {
            width: parent.width
            spacing: Theme.space8
            visible: form.signIn.problem !== ""

            Icon {
                name: "warn"
                color: Theme.danger
            }
            Label {
                type: Label.Type.Small
                width: parent.width - 24
                wrapMode: Text.Wrap
                color: Theme.danger
                text: form.signIn.problem
                Accessible.role: Accessible.AlertMessage
            }
        }
        Item {
            width: 1
            height: Theme.space16
        }
        PrimaryButton {
            width: parent.width
            implicitHeight: 36
            keys: "Return"
            busy: form.signIn.isBusy
            enabled: form.signIn.isMet && !busy
            text: form.signIn.isRegistering ? busy ? qsTr("Creating…") : qsTr("Create Account") : busy ? qsTr("Signing In…") : qsTr("Sign In")
            onClicked: form.submit()
        }
        Item {
            width: parent.width
            height: 56
            visible: form.signIn.providers.length > 0 || form.signIn.hasPasskeys

            Label {
                id: or

                anchors.centerIn: parent
                type: Label.Type.Small
                color: Theme.ink2
                text: qsTr("or")
            }
            Rectangle {
                anchors.left: parent.left
                anchors.right: or.left
                anchors.rightMargin: Theme.space12
                anchors.verticalCenter: parent.verticalCenter
                height: 1
                color: Theme.line
            }
            Rectangle {
                anchors.left: or.right
                anchors.leftMargin: Theme.space12
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                height: 1
                color: Theme.line
            }
        }
        Flow {
            id: providers

            width: parent.width
            spacing: Theme.space8
            visible: form.signIn.providers.length > 0 && form.signIn.awaited === ""

            Repeater {
                model: form.signIn.providers

                ActionButton {
                    required property var modelData

                    width: form.signIn.providers.length > 1 ? Math.max(implicitWidth, (providers.width - Theme.space8) / 2) : providers.width
                    implicitHeight: 36
                    enabled: !form.signIn.isBusy
                    text: qsTr("Continue with %1").arg(modelData.title)
                    onClicked: form.signIn.continueWith(modelData.name)
                }
            }
        }
        Row {
            width: parent.width
            height: 36
            spacing: Theme.space8
            visible: form.signIn.awaited !== ""

            Spinner {
                anchors.verticalCenter: parent.verticalCenter
            }
            Label {
                width: parent.width - stop.width - 14 - 2 * parent.spacing
                anchors.verticalCenter: parent.verticalCenter
                wrapMode: Text.Wrap
                color: Theme.ink2
                text: qsTr("Waiting for %1 in your browser.").arg(form.signIn.awaited)
                Accessible.role: Accessible.AlertMessage
            }
            ActionButton {
                id: stop

                anchors.verticalCenter: parent.verticalCenter
                enabled: !form.signIn.isBusy
                text: qsTr("Cancel")
                onClicked: form.signIn.abandonBrowser()
            }
        }
        Item {
            width: 1
            height: visible ? Theme.space8 : 0
            visible: form.signIn.hasPasskeys && form.signIn.providers.length > 0
        }
        ActionButton {
            width: parent.width
            implicitHeight: 36
            visible: form.signIn.hasPasskeys && !form.signIn.passkey.isOpen
            enabled: !form.signIn.isBusy
            iconName: "key"
            text: qsTr("Use a Passkey")
            onClicked: form.signIn.usePasskey()
        }
        PasskeySteps {
            width: parent.width
            prompt: form.signIn.passkey
        }
        Item {
            width: 1
            height: Theme.space20
        }
        Row {
            width: parent.width
            spacing: Theme.space8
            bottomPadding: visible ? Theme.space12 : 0
            visible: form.signIn.waiting !== ""

            Icon {
                name: "pending"
                color: Theme.warning
            }
            Label {
                type: Label.Type.Small
                width: parent.width - 24
                color: Theme.ink2
                text: form.signIn.waiting
            }
        }
        Label {
            type: Label.Type.Small
            width: parent.width
            visible: form.isOwn && !form.signIn.hasPasskeys
            wrapMode: Text.Wrap
            color: Theme.ink2
            text: qsTr("Passkeys work only with Orvane Cloud. On your own server, sign in with your email and password.")
        }
        Row {
            topPadding: visible ? Theme.space8 : 0
            visible: form.signIn.termsUrl !== "" || form.signIn.privacyUrl !== ""

            QuietButton {
                visible: form.signIn.termsUrl !== ""
                accented: true
                text: qsTr("Terms of Service")
                onClicked: Qt.openUrlExternally(form.signIn.termsUrl)
            }
            QuietButton {
                visible: form.signIn.privacyUrl !== ""
                accented: true
                text: qsTr("Privacy")
                onClicked: Qt.openUrlExternally(form.signIn.privacyUrl)
            }
        }
    }
}
