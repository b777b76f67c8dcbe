// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A project or a task to pick.
T.AbstractButton {
    id: row

    property string detail
    property string shade
    property bool chosen: false

    height: 28
    Accessible.role: Accessible.ListItem
    Accessible.name: detail === "" ? text : qsTr("%1, %2").arg(text).arg(detail)

    background: Rectangle {
        radius: 5
        color: row.chosen ? Theme.accentTint : row.hovered ? Theme.hover : "transparent"
    }
    contentItem: Item {
        Dot {
            id: dot
            x: 10
            anchors.verticalCenter: parent.verticalCenter
            color: row.shade === "" ? Theme.none : Theme.projectColor(row.shade)
            empty: row.shade === ""
        }
        Label {
            anchors.left: dot.right
            anchors.leftMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, parent.width - detail.width - 48)
            text: row.text
        }
        Label {
            id: detail
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            type: Label.Type.Small
            text: row.detail
            color: Theme.ink2
        }
    }
}
