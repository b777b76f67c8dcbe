// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The places where time can be kept.
Column {
    id: places

    required property SignInModel signIn

    // False where no address is wanted, or there is one.
    function take(): bool {
        const isWanted = signIn.place === SignInModel.OwnServer && signIn.address === "";
        if (isWanted)
            address.forceActiveFocus(Qt.OtherFocusReason);
        return isWanted;
    }

    Item {
        width: 36
        height: 36

        Icon {
            name: "mark-ring"
            size: 36
            color: Theme.ink1
        }
        Icon {
            name: "mark-hand"
            size: 36
            color: Theme.accent
        }
    }
    Item {
        width: 1
        height: Theme.space20
    }
    Label {
        type: Label.Type.Figures
        width: parent.width
        wrapMode: Text.Wrap
        text: qsTr("Where is your time kept?")
    }
    Item {
        width: 1
        height: Theme.space4
    }
    Label {
        width: parent.width
        wrapMode: Text.Wrap
        color: Theme.ink2
        text: qsTr("You can add the others later and switch between them.")
    }
    Item {
        width: 1
        height: Theme.space24
    }
    Column {
        width: parent.width
        spacing: Theme.space8

        PlaceCell {
            width: parent.width
            iconName: "mac"
            text: qsTr("This Computer")
            says: qsTr("No account. Works offline.")
            checked: places.signIn.place === SignInModel.ThisComputer
            onToggled: places.signIn.place = SignInModel.ThisComputer
        }
        PlaceCell {
            width: parent.width
            visible: places.signIn.hasHosted
            iconName: "cloud"
            text: qsTr("Orvane Cloud")
            says: qsTr("The same on all your devices.")
            checked: places.signIn.place === SignInModel.Hosted
            onToggled: places.signIn.place = SignInModel.Hosted
        }
        PlaceCell {
            width: parent.width
            iconName: "server"
            text: qsTr("Own Server")
            says: qsTr("Run by you or your team.")
            checked: places.signIn.place === SignInModel.OwnServer
            onToggled: places.signIn.place = SignInModel.OwnServer

            Column {
                y: Theme.space8
                width: parent.width
                spacing: Theme.space4

                TextEntry {
                    id: address

                    width: parent.width
                    placeholderText: qsTr("https://time.example.com")
                    Accessible.name: qsTr("Server address")
                    inputMethodHints: Qt.ImhUrlCharactersOnly | Qt.ImhNoAutoUppercase
                    text: places.signIn.address
                    busy: places.signIn.isAsking
                    error: places.signIn.addressProblem
                    enabled: !places.signIn.isBusy
                    onTextEdited: places.signIn.address = text

                    Icon {
                        anchors.right: parent.right
                        anchors.rightMargin: 11
                        y: 8
                        visible: places.signIn.isMet
                        name: "check"
                        color: Theme.accent
                    }
                }
                Label {
                    width: parent.width
                    visible: text !== "" && places.signIn.addressProblem === ""
                    type: Label.Type.Small
                    wrapMode: Text.Wrap
                    color: Theme.warning
                    text: places.signIn.addressWarning
                }
            }
        }
    }
}
