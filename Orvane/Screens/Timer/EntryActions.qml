// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What can be done with the entry under the pointer; of one among those chosen, its mark.
Item {
    id: actions

    required property LineData line

    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 12
        y: 10
        width: 16
        height: 16
        visible: actions.line.isSelected
        radius: Theme.radiusBlock
        color: Theme.accentFill

        Icon {
            anchors.centerIn: parent
            size: 12
            name: "check"
            color: Theme.inkOnAccent
        }
    }
    IconButton {
        visible: !actions.line.isSelected
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        iconName: "play"
        text: qsTr("Continue %1").arg(actions.line.title)
        keys: actions.line.timer.keys.caps[KeyTable.ContinueEntry]
        onClicked: actions.line.timer.continueEntry(actions.line.entryId)
    }
    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 40 + actions.line.columns.durationWidth + actions.line.columns.timesWidth + 24 + 28
        anchors.verticalCenter: parent.verticalCenter
        visible: actions.line.columns.isWide && !actions.line.isSelected
        width: buttons.width
        height: 28
        radius: Theme.radiusControl
        color: Theme.control
        border.color: Theme.line2

        Row {
            id: buttons

            IconButton {
                visible: !actions.line.isLocked
                iconName: "split"
                text: qsTr("Split %1").arg(actions.line.title)
                keys: actions.line.timer.keys.caps[KeyTable.SplitEntry]
                onClicked: actions.line.timer.split.open(actions.line.entryId)
            }
            // It would stand at the same, locked, time.
            IconButton {
                visible: !actions.line.isLocked
                iconName: "copy"
                text: qsTr("Duplicate %1").arg(actions.line.title)
                keys: actions.line.timer.keys.caps[KeyTable.DuplicateEntry]
                onClicked: actions.line.timer.duplicate(actions.line.entryId)
            }
            IconButton {
                iconName: "x"
                text: qsTr("Delete %1").arg(actions.line.title)
                keys: actions.line.timer.keys.caps[KeyTable.DeleteEntry]
                onClicked: actions.line.timer.remove(actions.line.entryId)
            }
        }
    }
}
