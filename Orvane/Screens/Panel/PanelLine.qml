// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// One thing that the panel offers. Letters that match what was typed stand out.
Rectangle {
    id: line

    required property string spoken
    required property var pieces
    required property string detail
    required property string kindText
    required property string icon
    required property string projectColor
    required property string action
    property bool isCurrent: false
    // Return is this line's.
    property bool isChosen: false

    signal taken

    function escaped(text: string): string {
        return text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;");
    }

    height: 36
    radius: 7
    color: isCurrent ? Theme.accentTint : hover.hovered ? Theme.hover : "transparent"
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.focused: isChosen
    Accessible.onPressAction: taken()

    HoverHandler {
        id: hover
    }
    TapHandler {
        onTapped: line.taken()
    }
    Item {
        x: 14
        width: 16
        height: parent.height

        Dot {
            anchors.centerIn: parent
            visible: line.icon === ""
            shade: Theme.projectColor(line.projectColor)
            empty: line.projectColor === ""
        }
        Icon {
            anchors.centerIn: parent
            visible: name !== ""
            name: line.icon
            color: line.isCurrent ? Theme.ink2 : Theme.ink3
        }
    }
    Label {
        id: title
        x: 40
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, end.x - x - 16)
        saidByPeople: true
        textFormat: Text.StyledText
        text: line.pieces.map(piece => piece.isMatch ? "<b><font color=\"" + Theme.accent + "\">" + line.escaped(piece.text) + "</font></b>" : line.escaped(piece.text)).join("")
        Accessible.ignored: true
    }
    Label {
        anchors.left: title.right
        anchors.leftMargin: 5
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, Math.max(0, end.x - x - 16))
        visible: line.detail !== "" && width > 24
        saidByPeople: true
        text: "· " + line.detail
        color: Theme.ink2
        Accessible.ignored: true
    }
    Row {
        id: end
        anchors.right: parent.right
        anchors.rightMargin: 14
        anchors.verticalCenter: parent.verticalCenter
        spacing: 6

        Loader {
            anchors.verticalCenter: parent.verticalCenter
            active: line.isChosen
            visible: active
            sourceComponent: KeyCap {
                keys: "Return"
            }
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            type: Label.Type.Small
            text: line.isChosen ? line.action : line.kindText
            color: Theme.ink2
            Accessible.ignored: true
        }
    }
}
