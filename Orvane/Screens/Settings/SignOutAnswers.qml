// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The way out: a button, or where changes wait the answers to what becomes of them.
Item {
    id: out

    required property AppModel app
    required property AccountDetails account
    required property bool asks

    signal asked(bool wanted)

    function begin() {
        if (out.account.waiting === 0)
            out.app.signOut(false);
        else
            out.asked(true);
    }

    height: asks ? card.height : button.height

    onAsksChanged: if (asks)
        sendFirst.forceActiveFocus()

    ActionButton {
        id: button

        visible: !out.asks
        busy: out.app.isSigningOut
        text: busy ? qsTr("Signing Out…") : qsTr("Sign Out")
        onClicked: out.begin()
    }
    Rectangle {
        id: card

        width: parent.width
        height: answers.y + answers.height + Theme.space12
        visible: out.asks
        radius: Theme.radiusCard
        color: Theme.chrome
        border.color: Theme.line2

        Icon {
            x: 13
            y: 15
            name: "pending"
            color: Theme.warning
        }
        Label {
            x: 37
            y: 13
            width: parent.width - x - 13
            font.weight: Font.DemiBold
            text: out.account.waiting === 1 ? qsTr("1 change hasn't been sent") : qsTr("%1 changes haven't been sent").arg(out.account.waiting)
        }
        Column {
            id: answers

            x: 13
            y: 42
            width: parent.width - 2 * x
            spacing: 6
            Keys.onEscapePressed: out.asked(false)
            Keys.onPressed: event => {
                event.accepted = event.key === Qt.Key_K;
                if (event.accepted)
                    keep.press();
            }

            AnswerRow {
                id: sendFirst

                width: parent.width
                text: qsTr("Send First")
                effect: qsTr("Signs out when the server has them all.")
                keys: "Return"
                onClicked: {
                    out.asked(false);
                    out.app.signOut(true);
                }
            }
            AnswerRow {
                id: keep

                width: parent.width
                text: qsTr("Keep on This Computer")
                effect: qsTr("Signs out now; they are sent when you sign in here again.")
                keys: "K"
                onClicked: {
                    out.asked(false);
                    out.app.signOut(false);
                }
            }
            AnswerRow {
                width: parent.width
                text: qsTr("Cancel")
                effect: qsTr("Stays signed in.")
                keys: "Esc"
                onClicked: out.asked(false)
            }
        }
    }
}
