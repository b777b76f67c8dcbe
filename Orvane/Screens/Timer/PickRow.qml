// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A project or a task to pick.
Rectangle {
    id: row

    property string text
    property string detail
    property string shade
    property bool chosen: false

    signal picked

    height: 28
    radius: 5
    color: chosen ? Theme.accentTint : hover.hovered ? Theme.hover : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: detail === "" ? text : qsTr("%1, %2").arg(text).arg(detail)
    Accessible.onPressAction: picked()

    HoverHandler {
        id: hover
    }
    TapHandler {
        onTapped: row.picked()
    }
    Dot {
        id: dot
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        shade: Theme.projectColor(row.shade)
        empty: row.shade === ""
    }
    Label {
        anchors.left: dot.right
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, parent.width - about.width - 48)
        saidByPeople: true
        text: row.text
        Accessible.ignored: true
    }
    Label {
        id: about
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        type: Label.Type.Small
        saidByPeople: true
        text: row.detail
        color: Theme.ink2
        Accessible.ignored: true
    }
}
