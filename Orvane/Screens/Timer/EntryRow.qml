// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What an entry's line shows.
Item {
    id: row

    required property LineData line

    readonly property TimerColumns columns: line.columns

    Rectangle {
        x: 0
        y: 8
        width: 3
        height: parent.height - 16
        radius: 1.5
        color: row.line.shade
        visible: row.line.partCount === 0
    }
    Column {
        y: 8
        visible: row.line.partCount > 0

        Repeater {
            model: row.line.partCount > 0 ? row.line.shares : []

            Rectangle {
                required property var modelData
                width: 3
                height: 20 * modelData.share / 100
                color: modelData.color
            }
        }
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
            width: Math.min(implicitWidth, parent.width - (state.visible ? state.width + 8 : 0) - (fork.visible ? 24 : 0))
            saidByPeople: true
            text: row.line.title
            color: row.line.isLocked ? Theme.ink2 : Theme.ink1
        }
        Icon {
            id: fork
            anchors.left: title.right
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            visible: row.line.partCount > 0
            name: "split"
            color: Theme.ink3
        }
        EntryMark {
            id: state
            anchors.left: fork.visible ? fork.right : title.right
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            mark: row.line.mark
            isShort: title.implicitWidth + 150 > what.width
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
            visible: row.line.partCount === 0
            project: row.line.project
            task: row.columns.isNarrow ? "" : row.line.task
            color: row.line.shade
        }
        ShareBar {
            id: bar
            anchors.verticalCenter: parent.verticalCenter
            width: row.columns.isWide ? 72 : 32
            visible: row.line.partCount > 0
            shares: row.line.shares
        }
        Label {
            anchors.left: bar.right
            anchors.leftMargin: 8
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: row.line.partCount > 0
            text: qsTr("%1 projects").arg(row.line.partCount)
            color: Theme.ink2
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
        visible: row.columns.isWide && row.line.isBillable
        name: "bill"
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
    Loader {
        anchors.fill: parent

        readonly property bool isWanted: row.line.isHovered && !row.line.isSelected

        onIsWantedChanged: isWanted ? setSource("EntryActions.qml", { line: row.line }) : source = ""
    }
}
