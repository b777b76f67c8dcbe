// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The tasks of the project that is edited. What is done to them holds at once.
Item {
    id: tasks

    required property ProjectsModel projects
    required property bool canEdit

    readonly property ProjectEditor editor: projects.editor
    readonly property color shade: Theme.projectColor(editor.color)

    implicitHeight: 12 + 32 + list.contentHeight + 16 + 32 + 12

    Rectangle {
        width: 1
        height: parent.height
        color: Theme.line
    }
    Item {
        id: head
        x: 24
        y: 12
        width: parent.width - 24 - 16
        height: 32

        Label {
            id: title
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Tasks")
            type: Label.Type.Small
            font.weight: Font.DemiBold
        }
        Label {
            anchors.left: title.right
            anchors.leftMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            type: Label.Type.Small
            text: tasks.editor.tasks.summary
            color: Theme.ink3
        }
        Label {
            anchors.right: parent.right
            anchors.rightMargin: 32
            anchors.verticalCenter: parent.verticalCenter
            visible: list.count > 0
            type: Label.Type.Small
            text: qsTr("This week")
            color: Theme.ink3
        }
    }
    ListView {
        id: list
        x: head.x
        anchors.top: head.bottom
        anchors.bottom: add.top
        anchors.bottomMargin: 8
        width: head.width
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        model: tasks.editor.tasks
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Tasks")

        delegate: TaskLine {
            width: list.width
            projects: tasks.projects
            canEdit: tasks.canEdit
            shade: tasks.shade
        }
    }
    TextEntry {
        id: add
        x: head.x
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 12
        width: head.width - addButton.width - 8
        visible: tasks.canEdit
        placeholderText: qsTr("New task")
        wrong: tasks.editor.wrongField === ProjectEditor.Task
        text: tasks.editor.newTask
        onTextEdited: tasks.editor.newTask = text
        // Return would save the project too.
        Keys.onReturnPressed: text.trim() === "" ? tasks.editor.save() : tasks.editor.addTask()
    }
    ActionButton {
        id: addButton
        anchors.right: head.right
        anchors.verticalCenter: add.verticalCenter
        visible: add.visible
        tall: true
        enabled: tasks.editor.newTask.trim() !== ""
        text: qsTr("Add")
        keys: "Return"
        onClicked: tasks.editor.addTask()
    }
}
