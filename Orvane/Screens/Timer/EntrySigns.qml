// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What there is to say of an entry beside its description: that it is split, and how it stands, as an icon and in words;
// without room, as the icon alone.
Row {
    id: root

    required property LineData line
    // Of the entry, and what both have together.
    required property Label title
    required property Item room

    readonly property int mark: line.mark

    spacing: 8

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        visible: root.line.partCount > 0
        name: "split"
        color: Theme.ink3
    }
    Row {
        spacing: 4
        visible: root.mark !== TimerList.None

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: root.mark === TimerList.Waiting ? "pending" : root.mark === TimerList.Conflict ? "fork" : root.mark === TimerList.Overlap ? "overlap" : "lock"
            color: root.mark === TimerList.Locked ? Theme.ink3 : Theme.warning
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            visible: text !== "" && root.title.implicitWidth + 150 <= root.room.width
            type: Label.Type.Small
            text: root.mark === TimerList.Waiting ? qsTr("Waiting to send") : root.mark === TimerList.Conflict ? qsTr("Changed on another device") : root.mark === TimerList.Overlap ? qsTr("Overlaps") : ""
            color: root.mark === TimerList.Waiting ? Theme.ink2 : Theme.warning
        }
    }
}
