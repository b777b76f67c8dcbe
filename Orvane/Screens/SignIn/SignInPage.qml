// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Where one's time is kept at the left, signing in there at the right.
FocusScope {
    id: page

    required property SignInModel signIn

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Sign In")

    function take() {
        if (!places.take())
            form.take();
    }

    Component.onCompleted: take()
    Keys.onEscapePressed: page.signIn.leave()

    // What is behind it is not to be clicked.
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.content
    }
    Rectangle {
        id: left

        width: Math.min(344, Math.round(parent.width * 0.42))
        height: parent.height
        color: Theme.chrome

        Rectangle {
            anchors.right: parent.right
            width: 1
            height: parent.height
            color: Theme.line
        }
        SignInPlaces {
            id: places

            signIn: page.signIn
            x: Theme.space32
            y: Math.max(Theme.space24, Math.min(96, Math.round((parent.height - height - 80) / 2)))
            width: parent.width - 2 * x
        }
        Icon {
            x: Theme.space32
            anchors.top: promise.top
            name: "lock"
            color: Theme.ink3
        }
        Label {
            id: promise

            type: Label.Type.Small
            x: Theme.space32 + 24
            width: parent.width - x - Theme.space32
            anchors.bottom: parent.bottom
            anchors.bottomMargin: Theme.space24
            wrapMode: Text.Wrap
            color: Theme.ink3
            text: qsTr("Logs, prompts and folder paths never leave the machine, whichever you choose.")
        }
    }
    Item {
        id: right

        readonly property int edge: width < 500 ? Theme.space24 : 72

        anchors.left: left.right
        anchors.right: parent.right
        height: parent.height

        SignInForm {
            id: form

            signIn: page.signIn
            focus: true
            visible: page.signIn.place !== SignInModel.ThisComputer
            x: right.edge
            width: Math.min(412, right.width - 2 * right.edge)
            anchors.verticalCenter: parent.verticalCenter
        }
        Column {
            x: right.edge
            width: Math.min(412, right.width - 2 * right.edge)
            anchors.verticalCenter: parent.verticalCenter
            visible: page.signIn.place === SignInModel.ThisComputer
            spacing: Theme.space4

            Label {
                type: Label.Type.Figures
                width: parent.width
                text: qsTr("Keep your time on this computer")
            }
            Label {
                width: parent.width
                wrapMode: Text.Wrap
                color: Theme.ink2
                text: qsTr("Nothing to sign in to. The server on this computer starts by itself.")
            }
            Item {
                width: 1
                height: Theme.space20
            }
            PrimaryButton {
                width: parent.width
                implicitHeight: 36
                text: qsTr("Use This Computer")
                onClicked: page.signIn.useThisComputer()
            }
        }
        QuietButton {
            anchors.right: parent.right
            anchors.top: parent.top
            anchors.margins: Theme.space16
            visible: page.signIn.canLeave
            text: qsTr("Cancel")
            keys: "Esc"
            onClicked: page.signIn.leave()
        }
    }
}
