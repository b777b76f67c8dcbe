// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A setting: its name and what it is for at the left, its controls beside it.
Item {
    id: group

    required property string title
    property string about
    // So far down that the name stands beside the first control.
    property int titleTop: 4
    property bool isLast: false
    default property alias content: controls.data

    readonly property bool isNarrow: width < 560
    readonly property int indent: isNarrow ? 0 : 232 + 32

    width: parent ? parent.width : 0
    height: visible ? implicitHeight : 0
    implicitHeight: 18 + Math.max(names.height, controls.y - 18 + controls.childrenRect.height) + 18
    Accessible.role: Accessible.Grouping
    Accessible.name: title

    Column {
        id: names
        y: 18 + (group.isNarrow ? 0 : group.titleTop)
        width: group.isNarrow ? parent.width : 232
        spacing: 4

        Label {
            width: parent.width
            wrapMode: Text.Wrap
            text: group.title
            font.weight: Font.DemiBold
        }
        Label {
            width: parent.width
            visible: text !== ""
            type: Label.Type.Small
            wrapMode: Text.Wrap
            text: group.about
            color: Theme.ink2
        }
    }
    Item {
        id: controls
        x: group.indent
        y: group.isNarrow ? names.y + names.height + 8 : 18
        width: parent.width - x
        height: childrenRect.height
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        visible: !group.isLast
        color: Theme.line
    }
}
