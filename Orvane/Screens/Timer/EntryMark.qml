// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What there is to say of an entry, as an icon and in words; without room, as the icon alone.
Row {
    id: root

    required property int mark
    required property bool isShort

    spacing: 4
    visible: mark !== TimerList.None

    Icon {
        anchors.verticalCenter: parent.verticalCenter
        name: root.mark === TimerList.Waiting ? "pending" : root.mark === TimerList.Conflict ? "fork" : root.mark === TimerList.Overlap ? "overlap" : "lock"
        color: root.mark === TimerList.Locked ? Theme.ink3 : Theme.warning
    }
    Label {
        anchors.verticalCenter: parent.verticalCenter
        visible: !root.isShort && text !== ""
        type: Label.Type.Small
        text: root.mark === TimerList.Waiting ? qsTr("Waiting to send") : root.mark === TimerList.Conflict ? qsTr("Changed on another device") : root.mark === TimerList.Overlap ? qsTr("Overlaps") : ""
        color: root.mark === TimerList.Waiting ? Theme.ink2 : Theme.warning
    }
}
