// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Why nothing can be shown, and the way to try again.
Item {
    id: failed

    required property TimerModel timer

    Column {
        x: 16
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - 32
        spacing: 16

        Label {
            width: parent.width
            text: failed.timer.loadProblem
            wrapMode: Text.Wrap
            elide: Text.ElideNone
            Accessible.role: Accessible.AlertMessage
        }
        ActionButton {
            text: qsTr("Try Again")
            onClicked: failed.timer.loadAgain()
        }
    }
}
