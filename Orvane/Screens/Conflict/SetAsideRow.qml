// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A change that the server refused: what was wanted, why not, what there is instead, and the answers to it.
FocusScope {
    id: row

    required property RefusedList refused
    required property int index
    required property string title
    required property string reason
    required property string sentence
    required property string project
    required property string task
    required property string projectColor
    required property string start
    required property string stop
    required property string length
    required property bool isTitleNew
    required property bool isStartNew
    required property bool isStopNew

    readonly property bool isReasonBeside: name.implicitWidth + why.implicitWidth + 24 <= what.width

    implicitHeight: 36 + Math.max(32, rest.height + 8) + 6
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Refused: %1. %2 %3").arg(title).arg(reason).arg(sentence)
    Keys.onReturnPressed: refused.edit(index)
    Keys.onEnterPressed: refused.edit(index)

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusCard
        color: "transparent"
        border.color: Theme.danger
    }
    Item {
        id: what
        anchors.left: parent.left
        anchors.leftMargin: 16
        anchors.right: chip.left
        anchors.rightMargin: 12
        y: 2
        height: 36

        Label {
            id: name
            height: parent.height
            width: Math.min(implicitWidth, parent.width - (row.isReasonBeside ? why.width + 24 : 24))
            saidByPeople: true
            text: row.title
            font.weight: row.isTitleNew ? Font.DemiBold : Font.Normal
        }
        Icon {
            id: mark
            anchors.left: name.right
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            name: "warn"
            color: Theme.danger
        }
        Label {
            id: why
            anchors.left: mark.right
            anchors.leftMargin: 4
            height: parent.height
            visible: row.isReasonBeside
            type: Label.Type.Small
            text: row.reason
            font.weight: Font.Medium
            color: Theme.danger
        }
    }
    ProjectChip {
        id: chip
        anchors.right: times.left
        anchors.rightMargin: 12
        y: 2 + (36 - height) / 2
        width: Math.min(implicitWidth, 160)
        project: row.project
        task: row.task
        color: row.projectColor === "" ? Theme.none : Theme.projectColor(row.projectColor)
    }
    Row {
        id: times
        anchors.right: span.left
        anchors.rightMargin: 12
        y: 2
        height: 36

        Label {
            height: parent.height
            text: row.start
            font.weight: row.isStartNew ? Font.DemiBold : Font.Normal
            color: row.isStartNew ? Theme.ink1 : Theme.ink2
        }
        Label {
            height: parent.height
            text: " – "
            color: Theme.ink2
            Accessible.ignored: true
        }
        Label {
            height: parent.height
            text: row.stop
            font.weight: row.isStopNew ? Font.DemiBold : Font.Normal
            color: row.isStopNew ? Theme.ink1 : Theme.ink2
        }
    }
    Label {
        id: span
        anchors.right: parent.right
        anchors.rightMargin: 16
        y: 2
        height: 36
        width: 56
        horizontalAlignment: Text.AlignRight
        text: row.length
        font.weight: Font.Medium
    }
    Column {
        id: rest
        x: 16
        y: 38 + Math.max(0, (32 - height) / 2)
        width: buttons.x - x - 12

        Label {
            width: parent.width
            visible: !row.isReasonBeside
            wrapMode: Text.Wrap
            text: row.reason
            color: Theme.danger
        }
        Label {
            width: parent.width
            wrapMode: Text.Wrap
            saidByPeople: true
            text: row.sentence
            color: Theme.ink2
        }
    }
    Row {
        id: buttons
        anchors.right: parent.right
        anchors.rightMargin: 8
        y: 40
        spacing: Theme.space8

        ActionButton {
            text: qsTr("Edit")
            keys: "Return"
            focus: true
            Accessible.name: qsTr("Edit %1").arg(row.title)
            onClicked: row.refused.edit(row.index)
        }
        ActionButton {
            text: qsTr("Try Again")
            onClicked: row.refused.tryAgain(row.index)
        }
        QuietButton {
            text: qsTr("Discard")
            onClicked: row.refused.discard(row.index)
        }
    }
}
