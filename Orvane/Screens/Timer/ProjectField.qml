// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane
import Orvane.Components

// What an entry goes to, and the list to choose it from.
T.AbstractButton {
    id: field

    required property ProjectPicker picker
    required property string project
    required property string task
    required property string shade
    required property bool isSplit

    signal picked(projectId: string, taskId: string)

    height: 32
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.ComboBox
    Accessible.name: isSplit ? qsTr("Project: several, by share") : project === "" ? qsTr("Project: none") : task === "" ? qsTr("Project: %1").arg(project) : qsTr("Project: %1, %2").arg(project).arg(task)
    onClicked: list.open()
    Keys.onDownPressed: list.open()

    background: Rectangle {
        radius: Theme.radiusControl
        color: Theme.content
        border.width: field.visualFocus || list.visible ? 2 : 1
        border.color: field.visualFocus || list.visible ? Theme.accent : Theme.field
    }
    contentItem: Item {
        ProjectChip {
            x: 10
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - 40
            project: field.isSplit ? qsTr("Split") : field.project
            task: field.isSplit ? "" : field.task
            color: field.shade === "" ? Theme.none : Theme.projectColor(field.shade)
        }
        Icon {
            anchors.right: parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            name: "updown"
            color: Theme.ink3
        }
    }

    T.Popup {
        id: list
        y: field.height + 4
        width: Math.max(field.width, 280)
        height: Math.min(options.contentHeight, 9 * 28) + 8 + 40
        padding: 4
        margins: Theme.space8
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        onOpened: {
            field.picker.query = "";
            query.forceActiveFocus(Qt.PopupFocusReason);
            options.currentIndex = 0;
        }
        onClosed: field.forceActiveFocus(Qt.PopupFocusReason)

        function take(row: int) {
            if (row < 0 || row >= field.picker.count)
                return;
            field.picked(field.picker.projectIdAt(row), field.picker.taskIdAt(row));
            close();
        }

        background: Rectangle {
            radius: Theme.radiusCard
            color: Theme.raised
            border.color: Theme.line2
        }
        FocusScope {
            width: list.availableWidth
            height: list.availableHeight
            focus: true

            TextEntry {
                id: query
                width: parent.width
                placeholderText: qsTr("Find a project")
                focus: true
                text: field.picker.query
                onTextEdited: {
                    field.picker.query = text;
                    options.currentIndex = 0;
                }
                onAccepted: list.take(options.currentIndex)
                Keys.onDownPressed: options.incrementCurrentIndex()
                Keys.onUpPressed: options.decrementCurrentIndex()
            }
            ListView {
                id: options
                y: 36
                width: parent.width
                height: parent.height - y
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                model: field.picker
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Projects")

                delegate: PickRow {
                    required property int index
                    required property string name
                    required property string about
                    required property string projectColor

                    width: options.width
                    text: name
                    detail: about
                    shade: projectColor
                    chosen: ListView.isCurrentItem
                    onPicked: list.take(index)
                }
            }
        }
    }
}
