// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What a line of the projects' table is of.
Item {
    required property ProjectsModel projects
    required property ProjectColumns columns
    required property int index
    required property int kind
    required property string itemId
    required property string name
    required property string detail
    required property string tasks
    required property string week
    required property real share
    required property string estimate
    required property string rate
    required property string serverColor
    required property bool isPrivate
    required property string spoken
    property bool isChosen: false

    readonly property bool isProject: kind === ProjectRows.Project || kind === ProjectRows.ArchivedProject
    readonly property bool isArchived: kind === ProjectRows.ArchivedHead || kind === ProjectRows.ArchivedProject
    readonly property bool isOpen: isProject && projects.editor.projectId === itemId
    readonly property color shade: serverColor === "" ? Theme.none : Theme.projectColor(serverColor)
}
