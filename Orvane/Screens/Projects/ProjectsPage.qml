// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Clients with their projects and tasks, and the tags.
FocusScope {
    id: page

    required property AppModel app
    required property TimerModel timer
    required property ProjectsModel projects

    readonly property NameList names: projects.kind === ProjectsModel.Tags ? projects.tags : projects.clients
    readonly property bool mayMake: projects.kind === ProjectsModel.Projects ? projects.mayEdit : names.mayEdit
    readonly property bool isEditing: projects.kind === ProjectsModel.Projects ? projects.editor.isNew || projects.editor.projectId !== "" : names.isNew || names.editedId !== ""
    readonly property string newText: projects.kind === ProjectsModel.Projects ? qsTr("New Project") : projects.kind === ProjectsModel.Clients ? qsTr("New Client") : qsTr("New Tag")

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Projects")

    // At the window's end there are no projects any more.
    onVisibleChanged: if (projects)
        projects.isShown = visible
    Component.onCompleted: projects.isShown = visible

    Connections {
        target: page.projects
        function onFindWanted() {
            search.forceActiveFocus(Qt.ShortcutFocusReason);
            search.selectAll();
        }
    }

    PageHead {
        id: head
        width: parent.width
        title: qsTr("Projects")
        timer: page.timer
        beside: [
            Segments {
                texts: [qsTr("Projects"), qsTr("Clients"), qsTr("Tags")]
                currentIndex: page.projects.kind
                onChosen: index => page.projects.kind = [ProjectsModel.Projects, ProjectsModel.Clients, ProjectsModel.Tags][index]
                Accessible.name: qsTr("What is listed")
            }
        ]

        TextEntry {
            id: search
            width: head.isShort ? 104 : 264
            height: 28
            focus: true
            iconName: "search"
            keys: head.isShort ? "" : page.app.keys.caps[KeyTable.FindHere]
            placeholderText: head.isShort ? qsTr("Find") : page.projects.kind === ProjectsModel.Projects ? qsTr("Find a project") : page.projects.kind === ProjectsModel.Clients ? qsTr("Find a client") : qsTr("Find a tag")
            text: page.projects.query
            onTextEdited: page.projects.query = text
            Keys.onEscapePressed: page.projects.query = ""
            Keys.onDownPressed: list.enter()
        }
        PrimaryButton {
            visible: page.mayMake
            enabled: !page.projects.isAway
            iconName: "plus"
            text: page.newText
            keys: head.isShort || page.projects.kind !== ProjectsModel.Projects ? "" : page.app.keys.caps[KeyTable.NewProject]
            onClicked: page.projects.beginNew()
        }
    }

    ProjectTable {
        id: list
        projects: page.projects
        anchors.top: head.bottom
        anchors.bottom: keys.top
        x: Theme.space24
        width: Math.min(parent.width - 2 * x, 1176)
        visible: page.projects.kind === ProjectsModel.Projects && !empty.visible
        onLeftUpwards: search.forceActiveFocus(Qt.BacktabFocusReason)
    }
    NameTable {
        projects: page.projects
        names: page.names
        anchors.top: head.bottom
        anchors.bottom: keys.top
        x: Theme.space24
        width: Math.min(parent.width - 2 * x, 1176)
        visible: page.projects.kind !== ProjectsModel.Projects && !empty.visible
    }
    Label {
        id: empty
        anchors.centerIn: list
        visible: text !== "" && !page.isEditing
        text: page.projects.emptyText
        color: Theme.ink2
    }
    KeyBar {
        id: keys
        anchors.bottom: parent.bottom
        width: parent.width
        hints: page.isEditing ? [
            { keys: "Return", text: qsTr("Save") },
            { keys: "Esc", text: qsTr("Leave as it was") },
            { keys: "Tab", text: qsTr("Next field") },
            { keys: page.app.keys.caps[KeyTable.FindHere], text: qsTr("Find") },
            { keys: page.app.keys.caps[KeyTable.Undo], text: qsTr("Undo") }
        ] : [
            { keys: "Up Down", text: qsTr("Choose") },
            { keys: "Return", text: page.mayMake ? qsTr("Edit") : qsTr("Look") },
            { keys: page.app.keys.caps[KeyTable.FindHere], text: qsTr("Find") },
            { keys: page.mayMake ? page.app.keys.caps[KeyTable.NewProject] : "", text: qsTr("New project") },
            { keys: page.app.keys.caps[KeyTable.Undo], text: qsTr("Undo") }
        ]
    }
}
