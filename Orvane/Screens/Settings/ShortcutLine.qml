// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A command and its keys, or the place where those below it are given.
Item {
    id: line

    required property ShortcutRows shortcuts
    required property bool isNarrow
    required property bool isHead
    required property string title
    required property string note
    required property int command
    required property string keyBar
    required property string keys
    required property bool isChanged

    readonly property bool isRecorded: !isHead && shortcuts.recorded === command
    readonly property bool isTaken: isRecorded && shortcuts.taker >= 0
    // Somebody else's wish for these keys waits for an answer.
    readonly property bool isWanted: !isHead && shortcuts.taker === command

    height: isHead ? 34 : isTaken ? 36 + question.height + 4 : isRecorded ? 36 : 28
    Accessible.role: isHead ? Accessible.Heading : Accessible.ListItem
    Accessible.name: isHead ? title : keys === "" ? qsTr("%1, no keys").arg(title) : qsTr("%1, %2").arg(title).arg(KeyNames.text(keys))

    HoverHandler {
        id: hover
    }
    Rectangle {
        width: parent.width
        height: line.isTaken ? parent.height - 4 : parent.height
        visible: !line.isHead
        radius: Theme.radiusControl
        color: line.isRecorded ? Theme.accentTint : hover.hovered ? Theme.hover : "transparent"
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        visible: line.isHead
        color: Theme.line
    }
    Label {
        id: name
        x: 12
        y: line.isHead ? 8 : 0
        height: line.isHead ? 22 : line.isRecorded ? 36 : 28
        text: line.title
        font.weight: line.isHead ? Font.DemiBold : Font.Normal
        Accessible.ignored: true
    }
    Label {
        anchors.left: name.right
        anchors.leftMargin: 8
        anchors.verticalCenter: name.verticalCenter
        visible: line.note !== ""
        type: Label.Type.Small
        text: line.note
        color: Theme.ink3
    }
    Icon {
        id: sign
        anchors.left: name.right
        anchors.leftMargin: 8
        anchors.verticalCenter: name.verticalCenter
        visible: line.isWanted || says.text !== ""
        name: line.isWanted ? "fork" : "warn"
        color: line.isWanted ? Theme.warning : Theme.danger
    }
    Label {
        id: says
        anchors.left: sign.right
        anchors.leftMargin: 4
        anchors.verticalCenter: name.verticalCenter
        type: Label.Type.Small
        text: line.isWanted ? line.isNarrow ? qsTr("Wanted") : qsTr("Wanted elsewhere") : line.isRecorded ? line.shortcuts.refusal : ""
        font.weight: Font.Medium
        color: line.isWanted ? Theme.warning : Theme.danger
        Accessible.role: Accessible.AlertMessage
    }
    Label {
        x: parent.width - 208 - 16 - 168
        height: name.height
        visible: !line.isHead && !line.isNarrow && says.text === ""
        type: Label.Type.Small
        text: line.keyBar === "" ? "–" : line.keyBar
        color: line.keyBar === "" ? Theme.ink3 : Theme.ink2
        Accessible.ignored: true
    }
    KeyField {
        x: parent.width - 208
        y: line.isRecorded ? 4 : 1
        width: 208
        visible: !line.isHead
        title: line.title
        keys: line.keys
        recording: line.isRecorded
        wanted: line.isRecorded ? line.shortcuts.wanted : ""
        lit: hover.hovered
        restorable: line.isChanged
        onRecordingWanted: line.shortcuts.record(line.command)
        onChordPressed: chord => line.shortcuts.press(chord)
        onAgreed: line.shortcuts.useHere()
        onDropped: line.shortcuts.keep()
        onCleared: line.shortcuts.clear(line.command)
        onRestored: line.shortcuts.restore(line.command)
    }
    Item {
        id: question

        y: 36
        width: parent.width
        height: line.isNarrow ? reason.height + 40 : 36
        visible: line.isTaken

        Icon {
            x: 12
            y: 6
            name: "fork"
            color: Theme.warning
        }
        // Above its answers where there is no room beside them.
        Label {
            id: reason

            x: 36
            height: Math.max(32, implicitHeight)
            width: (line.isNarrow ? parent.width : here.x) - x - 8
            wrapMode: Text.Wrap
            type: Label.Type.Small
            text: qsTr("%1 is %2. Used here, %2 has no keys.").arg(KeyNames.text(line.shortcuts.wanted)).arg(line.shortcuts.takerTitle)
        }
        ActionButton {
            id: here
            y: line.isNarrow ? reason.height : 0
            anchors.right: stays.left
            anchors.rightMargin: 8
            text: qsTr("Use Here")
            keys: "Return"
            onClicked: line.shortcuts.useHere()
        }
        QuietButton {
            id: stays
            y: here.y
            anchors.right: parent.right
            anchors.rightMargin: 8
            text: line.keys === "" ? qsTr("Keep None") : qsTr("Keep %1").arg(KeyNames.text(line.keys.split(" ")[0]))
            keys: "Esc"
            onClicked: line.shortcuts.keep()
        }
    }
}
