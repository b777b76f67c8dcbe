// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// An entry in one line: as it would be saved, or as the server has it.
Rectangle {
    id: result

    required property ConflictModel conflict
    required property string caption

    readonly property string where: conflict.task === "" ? conflict.project : conflict.project + " › " + conflict.task
    readonly property string said: conflict.description + (where === "" ? "" : ", " + where) + (conflict.tags === "" ? "" : ", " + conflict.tags) + ", " + conflict.times + ", " + conflict.length

    height: 40
    radius: Theme.radiusCard
    color: Theme.dark ? Theme.content : Theme.chrome
    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("%1: %2").arg(caption).arg(said)

    Label {
        id: heading
        x: Theme.space12
        height: parent.height
        type: Label.Type.Small
        text: result.caption
        color: Theme.ink2
        Accessible.ignored: true
    }
    Row {
        id: what
        anchors.left: heading.right
        anchors.leftMargin: Theme.space12
        anchors.right: when.left
        anchors.rightMargin: Theme.space12
        height: parent.height
        spacing: Theme.space12
        clip: true

        readonly property int room: width - chip.width - tags.width - 2 * spacing

        Label {
            height: parent.height
            width: Math.min(implicitWidth, Math.max(60, what.room))
            saidByPeople: true
            text: result.conflict.description
            font.weight: Font.Medium
            Accessible.ignored: true
        }
        ProjectChip {
            id: chip
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, 180)
            project: result.conflict.project
            task: result.conflict.task
            color: result.conflict.projectColor === "" ? Theme.none : Theme.projectColor(result.conflict.projectColor)
            Accessible.ignored: true
        }
        Label {
            id: tags
            height: parent.height
            width: Math.min(implicitWidth, 140)
            type: Label.Type.Small
            saidByPeople: true
            text: result.conflict.tags
            color: Theme.ink2
            Accessible.ignored: true
        }
    }
    Row {
        id: when
        anchors.right: parent.right
        anchors.rightMargin: Theme.space12
        height: parent.height
        spacing: Theme.space12

        Label {
            height: parent.height
            text: result.conflict.times
            color: Theme.ink2
            Accessible.ignored: true
        }
        Label {
            height: parent.height
            text: result.conflict.length
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
    }
}
