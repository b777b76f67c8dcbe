// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// One line of the projects' table: a client, a project or its editor, the head of the archived ones.
ProjectLineData {
    id: line

    // The editor has gone, and the keyboard goes back to the list.
    signal closed
    signal opened

    function act(): void {
        if (isProject)
            projects.editor.open(itemId);
        else if (kind === ProjectRows.ArchivedHead)
            projects.showsArchived = !projects.showsArchived;
    }

    height: isOpen ? editor.height + 8 : kind === ProjectRows.Client ? 40 : kind === ProjectRows.ArchivedHead ? 52 : 36
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.focusable: kind !== ProjectRows.Client
    Accessible.onPressAction: line.act()
    Keys.onReturnPressed: event => {
        event.accepted = !line.isOpen;
        if (!line.isOpen)
            line.act();
    }

    Rectangle {
        width: parent.width
        height: 1
        y: 8
        visible: line.kind === ProjectRows.ArchivedHead
        color: Theme.line
    }
    HoverHandler {
        id: hover
    }
    TapHandler {
        enabled: !line.isOpen && line.kind !== ProjectRows.Client
        onTapped: line.act()
    }
    Rectangle {
        anchors.fill: parent
        anchors.topMargin: line.kind === ProjectRows.ArchivedHead ? 12 : 0
        visible: !line.isOpen && line.kind !== ProjectRows.Client && (hover.hovered || line.isChosen)
        radius: Theme.radiusControl
        color: hover.hovered ? Theme.hover : "transparent"
        border.width: line.isChosen ? 2 : 0
        border.color: Theme.accent
    }
    ProjectFacts {
        visible: !line.isOpen
        line: line
        width: parent.width
        y: line.kind === ProjectRows.Client ? 8 : line.kind === ProjectRows.ArchivedHead ? 12 : 0
        height: parent.height - y
    }
    WantedLoader {
        id: editor
        y: 4
        width: parent.width
        isWanted: line.isOpen
        page: "ProjectForm.qml"
        properties: ({ projects: line.projects, columns: line.columns, line: line })
        onIsWantedChanged: isWanted ? line.opened() : line.closed()
    }
}
