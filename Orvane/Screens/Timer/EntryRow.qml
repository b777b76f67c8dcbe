// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What an entry's line shows.
Item {
    id: row

    required property LineData line

    readonly property TimerColumns columns: line.columns
    // Most entries are none, and are drawn without what it takes.
    readonly property bool isSplit: line.partCount > 0

    Rectangle {
        x: 0
        y: 8
        width: 3
        height: parent.height - 16
        radius: 1.5
        color: row.line.shade
        visible: !row.isSplit
    }
    Loader {
        readonly property bool isWanted: row.isSplit

        anchors.fill: parent
        onIsWantedChanged: isWanted ? setSource("EntryShares.qml", { line: row.line, place: where }) : source = ""
    }
    Item {
        id: what
        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.right: where.left
        anchors.rightMargin: 12
        height: parent.height

        Label {
            id: title
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, parent.width - (signs.isWanted ? signs.width + 8 : 0))
            saidByPeople: true
            text: row.line.title
            color: row.line.isLocked ? Theme.ink2 : Theme.ink1
        }
        Loader {
            id: signs

            readonly property bool isWanted: row.isSplit || row.line.mark !== TimerList.None

            anchors.left: title.right
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            onIsWantedChanged: isWanted ? setSource("EntrySigns.qml", { line: row.line, title: title, room: what }) : source = ""
        }
    }
    Item {
        id: where
        anchors.right: row.columns.isWide ? tags.left : times.left
        anchors.rightMargin: 12
        width: row.columns.projectWidth
        height: parent.height

        ProjectChip {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            visible: !row.isSplit
            project: row.line.project
            task: row.columns.isNarrow ? "" : row.line.task
            color: row.line.shade
        }
    }
    Label {
        id: tags
        anchors.right: bill.left
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        width: row.columns.isWide ? 104 : 0
        visible: row.columns.isWide && !row.line.isHovered
        type: Label.Type.Small
        saidByPeople: true
        text: row.line.tags
        color: Theme.ink2
    }
    Icon {
        id: bill
        anchors.right: times.left
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        width: row.columns.isWide ? 16 : 0
        name: row.columns.isWide && row.line.isBillable ? "bill" : ""
        color: Theme.ink3
    }
    Label {
        id: times
        anchors.right: duration.left
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        width: row.columns.timesWidth
        horizontalAlignment: Text.AlignRight
        text: row.line.times
        color: row.line.mark === TimerList.Overlap ? Theme.warning : Theme.ink2
    }
    Label {
        id: duration
        anchors.right: parent.right
        anchors.rightMargin: 40
        anchors.verticalCenter: parent.verticalCenter
        width: row.columns.durationWidth
        horizontalAlignment: Text.AlignRight
        text: row.line.duration
        font.weight: Font.Medium
    }
}
