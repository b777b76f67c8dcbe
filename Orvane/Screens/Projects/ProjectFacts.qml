// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What a line of the projects' table says, in its columns.
Item {
    id: facts

    required property ProjectLineData line

    readonly property ProjectColumns columns: line.columns
    readonly property bool isHead: !line.isProject

    Icon {
        x: 14
        anchors.verticalCenter: parent.verticalCenter
        visible: facts.line.kind !== ProjectRows.Client
        name: facts.line.isOpen || (facts.line.kind === ProjectRows.ArchivedHead && facts.line.projects.showsArchived) ? "down" : "right"
        color: Theme.ink3
    }
    Dot {
        x: 40
        anchors.verticalCenter: parent.verticalCenter
        visible: facts.line.isProject
        shade: facts.line.shade
        opacity: facts.line.isArchived ? 0.6 : 1
    }
    Label {
        id: title
        x: facts.line.kind === ProjectRows.Client ? 16 : facts.isHead ? 40 : 56
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, facts.width - x - facts.columns.nameRight - (about.visible ? about.width + 8 : 0) - (lock.visible ? 24 : 0))
        saidByPeople: true
        text: facts.line.name
        font.weight: facts.isHead ? Font.DemiBold : Font.Medium
        color: facts.line.isArchived || (facts.line.kind === ProjectRows.Client && facts.line.itemId === "") ? Theme.ink2 : Theme.ink1
        Accessible.ignored: true
    }
    Icon {
        id: lock
        anchors.left: title.right
        anchors.leftMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        visible: facts.line.isPrivate
        name: "lock"
        color: Theme.ink3
    }
    Label {
        id: about
        anchors.left: title.right
        anchors.leftMargin: 8
        anchors.verticalCenter: title.verticalCenter
        visible: text !== ""
        type: Label.Type.Small
        text: facts.line.detail
        color: Theme.ink3
        Accessible.ignored: true
    }
    FigureCell {
        end: facts.columns.tasksRight
        room: 56
        visible: facts.line.isProject
        text: facts.line.tasks
    }
    Rectangle {
        x: facts.width - facts.columns.barRight - facts.columns.barWidth
        anchors.verticalCenter: parent.verticalCenter
        visible: facts.columns.hasBars && facts.line.isProject && facts.line.share > 0
        width: Math.max(2, facts.columns.barWidth * facts.line.share)
        height: 8
        radius: 2
        color: facts.line.shade
    }
    FigureCell {
        end: facts.columns.weekRight
        room: facts.columns.weekWidth
        text: facts.line.week
        weight: facts.isHead ? Font.DemiBold : Font.Medium
    }
    FigureCell {
        end: facts.columns.estimateRight
        room: facts.columns.estimateWidth
        text: facts.line.estimate
    }
    FigureCell {
        end: facts.columns.rateRight
        room: facts.columns.rateWidth
        text: facts.line.rate
    }
}
