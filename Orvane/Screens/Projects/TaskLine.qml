// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A task of a project: whether it is done, its name, which is edited in its place, and its week.
Item {
    id: line

    required property ProjectsModel projects
    required property bool canEdit
    required property color shade
    required property string itemId
    required property string name
    required property bool isDone
    required property string week
    required property real share
    property bool isRenamed: false

    readonly property bool isTask: itemId !== ""
    readonly property bool isAsked: isTask && projects.removal.itemId === itemId

    height: isAsked ? 28 + answers.height + 12 : 28
    Accessible.role: Accessible.ListItem
    Accessible.name: isDone ? qsTr("%1, done").arg(name) : qsTr("%1, %2 this week").arg(name).arg(week)

    CheckMark {
        y: 6
        visible: line.isTask
        enabled: line.canEdit
        text: qsTr("%1 is done").arg(line.name)
        checked: line.isDone
        onToggled: line.projects.editor.setTaskDone(line.itemId, checked)
    }
    Label {
        x: 28
        height: 28
        width: Math.min(implicitWidth, parent.width - x - 240)
        visible: !line.isRenamed
        saidByPeople: true
        text: line.name
        color: line.isDone || !line.isTask ? Theme.ink2 : Theme.ink1
        Accessible.ignored: true

        TapHandler {
            enabled: line.canEdit && line.isTask
            onTapped: line.rename()
        }
    }
    TextEntry {
        id: nameField
        x: 20
        height: 28
        width: parent.width - x - 150
        visible: line.isRenamed
        Accessible.name: qsTr("Name of the task")
        onActiveFocusChanged: if (!activeFocus)
            line.isRenamed = false
        Keys.onReturnPressed: {
            line.projects.editor.renameTask(line.itemId, text);
            line.isRenamed = false;
        }
        Keys.onEscapePressed: line.isRenamed = false
    }
    Rectangle {
        x: parent.width - 32 - 72 - 12 - 120
        y: 12
        visible: !line.isRenamed && line.share > 0
        width: Math.max(2, 120 * line.share)
        height: 4
        radius: 2
        opacity: 0.7
        color: line.shade
    }
    Label {
        anchors.right: parent.right
        anchors.rightMargin: 32
        height: 28
        text: line.isDone ? qsTr("Done") : line.week
        color: line.isDone || line.week === "–" ? Theme.ink3 : Theme.ink2
        Accessible.ignored: true
    }
    IconButton {
        id: more
        anchors.right: parent.right
        visible: line.isTask && line.canEdit
        width: 24
        iconName: "more"
        text: qsTr("More for %1").arg(line.name)
        onClicked: menu.popup(more, 0, more.height)
    }
    MenuPanel {
        id: menu
        title: qsTr("Task")

        MenuRow {
            text: qsTr("Rename")
            onTriggered: line.rename()
        }
        MenuRow {
            text: line.isDone ? qsTr("Open Again") : qsTr("Mark as Done")
            onTriggered: line.projects.editor.setTaskDone(line.itemId, !line.isDone)
        }
        MenuLine {}
        MenuRow {
            text: qsTr("Delete…")
            dangerous: true
            onTriggered: line.projects.removal.ask(CatalogRemoval.TaskOfProject, line.itemId)
        }
    }
    WantedLoader {
        id: answers
        y: 32
        width: parent.width
        isWanted: line.isAsked
        page: "RemovalAnswers.qml"
        properties: ({ removal: line.projects.removal })
    }

    function rename(): void {
        isRenamed = true;
        nameField.text = name;
        nameField.forceActiveFocus(Qt.OtherFocusReason);
        nameField.selectAll();
    }
}
