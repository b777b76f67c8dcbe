// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// One part of an entry that is divided by percents.
FocusScope {
    id: row

    required property TimerModel timer
    required property int shareX
    required property int index
    required property string description
    required property string project
    required property string task
    required property string projectColor
    required property bool isBillable
    required property string percentText
    required property string length

    readonly property SplitModel split: timer.split

    function take() {
        share.forceActiveFocus(Qt.OtherFocusReason);
        share.selectAll();
    }

    implicitHeight: 40
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Part %1").arg(index + 1)

    ProjectField {
        y: 4
        width: 188
        picker: row.timer.picker
        project: row.project
        task: row.task
        shade: row.projectColor
        isSplit: false
        onPicked: (projectId, taskId) => row.split.parts.setProject(row.index, projectId, taskId)
    }
    TextEntry {
        x: 188 + 8
        y: 4
        width: billable.x - 8 - x
        leftPadding: 9
        placeholderText: qsTr("Description")
        Accessible.name: qsTr("Description of part %1").arg(row.index + 1)
        text: row.description
        onTextEdited: row.split.parts.setDescription(row.index, text)
        onAccepted: row.split.save()
    }
    IconButton {
        id: billable
        x: row.shareX - 8 - 28
        y: 4
        height: 32
        iconName: "bill"
        ink: Theme.ink3
        text: row.isBillable ? qsTr("Billable") : qsTr("Not billable")
        checked: row.isBillable
        onClicked: row.split.parts.setBillable(row.index, !row.isBillable)
    }
    TextEntry {
        id: share
        x: row.shareX
        y: 4
        width: 76
        focus: true
        leftPadding: 8
        rightPadding: 31 + sign.implicitWidth
        horizontalAlignment: TextInput.AlignRight
        Accessible.name: qsTr("Share of part %1, percent").arg(row.index + 1)
        text: row.percentText
        onTextEdited: row.split.typePercent(row.index, text)
        onEditingFinished: row.split.settlePercents()
        onAccepted: row.split.save()
        Keys.onUpPressed: event => row.split.nudgePercent(row.index, event.modifiers & Qt.ShiftModifier ? 5 : 1)
        Keys.onDownPressed: event => row.split.nudgePercent(row.index, event.modifiers & Qt.ShiftModifier ? -5 : -1)

        Label {
            id: sign
            anchors.right: parent.right
            anchors.rightMargin: 31
            height: parent.height
            text: qsTr("%")
            Accessible.ignored: true
        }
        Icon {
            anchors.right: parent.right
            anchors.rightMargin: 9
            anchors.verticalCenter: parent.verticalCenter
            name: "updown"
            color: Theme.ink3

            MouseArea {
                anchors.fill: parent
                anchors.margins: -6
                onClicked: mouse => row.split.nudgePercent(row.index, mouse.y < height / 2 ? 1 : -1)
            }
        }
    }
    Label {
        x: row.shareX + 76 + 8 + 48 - width
        height: parent.height
        font.weight: Font.Medium
        text: row.length
    }
    IconButton {
        x: parent.width - 24
        anchors.verticalCenter: parent.verticalCenter
        width: 28
        visible: row.split.canRemovePart
        iconName: "x"
        ink: Theme.ink3
        text: qsTr("Remove part %1").arg(row.index + 1)
        onClicked: row.split.removePart(row.index)
    }
}
