// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A part of the split entry above.
Item {
    id: root

    required property LineData line

    Label {
        anchors.left: parent.left
        anchors.leftMargin: 32
        anchors.right: chip.left
        anchors.rightMargin: 12
        anchors.verticalCenter: parent.verticalCenter
        saidByPeople: true
        text: root.line.title
        color: Theme.ink2
    }
    ProjectChip {
        id: chip
        anchors.right: parent.right
        anchors.rightMargin: root.line.columns.projectRight
        width: root.line.columns.projectWidth
        anchors.verticalCenter: parent.verticalCenter
        type: Label.Type.Small
        project: root.line.project
        task: root.line.task
        color: root.line.shade
    }
    Label {
        anchors.right: parent.right
        anchors.rightMargin: root.line.columns.timesRight
        anchors.verticalCenter: parent.verticalCenter
        type: Label.Type.Small
        text: root.line.times
        color: Theme.ink2
    }
    Label {
        anchors.right: parent.right
        anchors.rightMargin: 40
        anchors.verticalCenter: parent.verticalCenter
        type: Label.Type.Small
        text: root.line.duration
        color: Theme.ink2
    }
}
