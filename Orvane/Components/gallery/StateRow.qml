// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A component's name and its states beside each other.
Row {
    id: row

    required property string name
    default property alias shown: cells.data

    Item {
        width: 128
        height: 44

        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: row.name
            color: Theme.ink2
        }
    }
    Row {
        id: cells

        spacing: 16
    }
}
