// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// One line of the list: a day's head, a folded day, an entry or its editor, a share of a split entry.
LineData {
    id: line

    readonly property bool isEdited: kind === TimerList.Entry && timer.editor.entryId !== "" && timer.editor.entryId === entryId

    // The editor has gone, and the keyboard goes back to the list.
    signal edited

    height: isEdited ? editor.height + 8 : kind === TimerList.Day ? 40 : kind === TimerList.Share ? 28 : 36
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.focusable: true
    Accessible.onPressAction: line.act()

    function act() {
        if (kind === TimerList.Entry)
            timer.editor.open(entryId);
        else if (kind === TimerList.Folded || kind === TimerList.Day)
            timer.list.turn(index);
    }

    HoverHandler {
        id: hover
    }
    TapHandler {
        enabled: !line.isEdited && line.kind !== TimerList.Share
        onTapped: line.act()
    }
    Rectangle {
        anchors.fill: parent
        anchors.leftMargin: 4
        anchors.rightMargin: 4
        visible: !line.isEdited && (line.kind === TimerList.Entry || line.kind === TimerList.Folded) && (hover.hovered || line.isChosen)
        radius: Theme.radiusControl
        color: hover.hovered ? Theme.hover : "transparent"
        border.width: line.isChosen ? 2 : 0
        border.color: Theme.accent
    }
    Loader {
        anchors.fill: parent
        anchors.leftMargin: 4
        anchors.rightMargin: 4
        active: !line.isEdited
        sourceComponent: line.kind === TimerList.Day ? dayHead : line.kind === TimerList.Folded ? foldedDay : line.kind === TimerList.Share ? shareRow : entryRow
    }
    Loader {
        id: editor
        x: 4
        y: 4
        width: parent.width - 8
        height: active && item ? (item as Item).implicitHeight : 0
        active: line.isEdited
        onActiveChanged: if (!active)
            line.edited()
        sourceComponent: EntryEditorForm {
            timer: line.timer
            isWide: line.columns.isWide
            shade: line.shade
            width: editor.width
        }
    }

    Component {
        id: dayHead

        Item {
            Label {
                id: day
                x: 16
                y: 12
                text: line.title
                font.weight: Font.DemiBold
            }
            Icon {
                id: lock
                anchors.left: day.right
                anchors.leftMargin: 8
                anchors.verticalCenter: day.verticalCenter
                visible: line.isLocked
                name: "lock"
                size: 14
            }
            Label {
                anchors.left: lock.visible ? lock.right : day.right
                anchors.leftMargin: 8
                anchors.verticalCenter: day.verticalCenter
                type: Label.Type.Small
                text: line.subtitle
                color: Theme.ink3
            }
            Label {
                anchors.right: parent.right
                anchors.rightMargin: 40
                y: 12
                text: line.total
                font.weight: Font.DemiBold
            }
        }
    }
    Component {
        id: foldedDay

        Item {
            Icon {
                x: 0
                anchors.verticalCenter: parent.verticalCenter
                name: "right"
                color: Theme.ink3
            }
            Label {
                id: day
                x: 16
                anchors.verticalCenter: parent.verticalCenter
                text: line.title
                font.weight: Font.DemiBold
            }
            Label {
                anchors.left: day.right
                anchors.leftMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                type: Label.Type.Small
                text: line.subtitle
                color: Theme.ink3
            }
            ShareBar {
                anchors.right: parent.right
                anchors.rightMargin: 40 + line.columns.durationWidth + 12 + (line.columns.isWide ? 140 : 0)
                anchors.verticalCenter: parent.verticalCenter
                width: line.columns.projectWidth + (line.columns.isWide ? 116 : 0)
                shares: line.shares
            }
            Label {
                anchors.right: parent.right
                anchors.rightMargin: 40
                anchors.verticalCenter: parent.verticalCenter
                text: line.total
                font.weight: Font.DemiBold
            }
        }
    }
    Component {
        id: entryRow

        EntryRow {
            line: line
            isHovered: hover.hovered
        }
    }
    Component {
        id: shareRow

        Item {
            Label {
                x: 32
                anchors.right: chip.left
                anchors.rightMargin: 12
                anchors.verticalCenter: parent.verticalCenter
                text: line.title
                color: Theme.ink2
            }
            ProjectChip {
                id: chip
                x: parent.width - 40 - line.columns.durationWidth - 12 - line.columns.timesWidth - (line.columns.isWide ? 144 : 12) - width + (line.columns.isWide ? 0 : 0)
                width: line.columns.projectWidth
                anchors.verticalCenter: parent.verticalCenter
                type: Label.Type.Small
                project: line.project
                task: line.task
                color: line.shade
            }
            Label {
                anchors.right: parent.right
                anchors.rightMargin: 40 + line.columns.durationWidth + 12
                anchors.verticalCenter: parent.verticalCenter
                type: Label.Type.Small
                text: line.times
                color: Theme.ink2
            }
            Label {
                anchors.right: parent.right
                anchors.rightMargin: 40
                anchors.verticalCenter: parent.verticalCenter
                type: Label.Type.Small
                text: line.duration
                color: Theme.ink2
            }
        }
    }
}
