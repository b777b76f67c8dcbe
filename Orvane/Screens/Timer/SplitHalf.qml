// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// One of the two entries that one becomes.
Rectangle {
    id: half

    required property TimerModel timer
    required property int index
    required property string description
    required property string project
    required property string task
    required property string projectColor
    required property bool isSplit
    required property string times
    required property string length

    readonly property string name: index === 0 ? qsTr("First") : qsTr("Second")

    implicitHeight: 122
    radius: Theme.radiusCard
    color: Theme.dark ? Theme.inset : Theme.content
    border.width: 1
    border.color: Theme.line2
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("%1, %2, %3").arg(name).arg(times).arg(length)

    Label {
        x: 13
        y: 9
        height: 20
        type: Label.Type.Small
        font.weight: Font.DemiBold
        text: half.name
        color: Theme.ink2
        Accessible.ignored: true
    }
    Label {
        anchors.right: span.left
        anchors.rightMargin: Theme.space8
        y: 9
        text: half.times
        color: Theme.ink2
        Accessible.ignored: true
    }
    Label {
        id: span
        x: parent.width - 13 - width
        y: 9
        width: Math.max(40, implicitWidth)
        horizontalAlignment: Text.AlignRight
        font.weight: Font.DemiBold
        text: half.length
        Accessible.ignored: true
    }
    TextEntry {
        x: 13
        y: 37
        width: parent.width - 26
        leftPadding: 9
        placeholderText: qsTr("Description")
        Accessible.name: qsTr("Description of the %1 half").arg(half.name.toLowerCase())
        text: half.description
        onTextEdited: half.timer.split.halves.setDescription(half.index, text)
        onAccepted: half.timer.split.save()
    }
    ProjectField {
        x: 13
        y: 77
        width: parent.width - 26
        picker: half.timer.picker
        project: half.project
        task: half.task
        shade: half.projectColor
        isSplit: half.isSplit
        onPicked: (projectId, taskId) => half.timer.split.halves.setProject(half.index, projectId, taskId)
    }
}
