// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The head of a section: its name, what stands in it as children, and what runs.
Item {
    id: head

    required property string title
    required property TimerModel timer
    default property alias content: tools.data
    // What stands beside the name.
    property alias beside: besideRow.data

    readonly property bool isShort: width < 900

    implicitHeight: 56

    Label {
        id: name
        x: Theme.space24
        anchors.verticalCenter: parent.verticalCenter
        type: Label.Type.Title
        text: head.title
        Accessible.role: Accessible.Heading
    }
    Row {
        id: besideRow
        anchors.left: name.right
        anchors.leftMargin: Theme.space16
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.space12
    }
    Row {
        id: tools
        anchors.right: pill.visible ? pill.left : parent.right
        anchors.rightMargin: pill.visible ? Theme.space12 : Theme.space24
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.space12
    }
    RunningPill {
        id: pill
        timer: head.timer
        isShort: head.isShort
        anchors.right: parent.right
        anchors.rightMargin: Theme.space24
        anchors.verticalCenter: parent.verticalCenter
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
}
