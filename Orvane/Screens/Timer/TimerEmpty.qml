// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// Nothing was ever tracked here.
Item {
    Column {
        x: 16
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - 32
        spacing: 4

        Label {
            type: Label.Type.Figures
            text: qsTr("Nothing tracked yet")
            Accessible.role: Accessible.Heading
        }
        Label {
            width: parent.width
            text: qsTr("Type what you are doing, then Return. The timer starts at once.")
            color: Theme.ink2
            wrapMode: Text.Wrap
        }
    }
}
