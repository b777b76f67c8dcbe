// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// One state of a component; without one a dash.
Item {
    id: cell

    default property alias content: holder.data

    implicitWidth: 164
    implicitHeight: 44

    Item {
        id: holder

        anchors.verticalCenter: parent.verticalCenter
        width: parent.width
        height: childrenRect.height
    }
    Label {
        anchors.verticalCenter: parent.verticalCenter
        visible: holder.children.length === 0
        text: "–"
        color: Theme.ink3
    }
}
