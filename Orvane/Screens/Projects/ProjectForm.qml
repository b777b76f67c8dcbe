// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A project edited in its place: Return saves, Escape leaves it as it was. Its tasks stand beside it.
FocusScope {
    id: form

    required property ProjectsModel projects
    required property ProjectColumns columns
    // None for a new one.
    property ProjectLineData line: null

    readonly property ProjectEditor editor: projects.editor
    readonly property bool isWide: width >= 860
    readonly property bool canEdit: projects.mayEdit && !editor.isArchived && !editor.isBusy
    readonly property bool isAsked: projects.removal.itemId !== "" && projects.removal.itemId === editor.projectId
    readonly property bool hasTasks: !editor.isNew

    implicitHeight: headLine.height + fields.height + (tasks.visible && !isWide ? tasks.implicitHeight : 0) + problem.height + foot.height
    focus: true
    Accessible.role: Accessible.Form
    Accessible.name: editor.isNew ? qsTr("New project") : qsTr("Edit the project")

    Component.onCompleted: {
        fields.take();
    }

    Keys.onReturnPressed: form.projects.mayEdit ? form.editor.save() : form.editor.cancel()
    Keys.onEnterPressed: form.projects.mayEdit ? form.editor.save() : form.editor.cancel()
    Keys.onEscapePressed: form.isAsked ? form.projects.removal.keep() : form.editor.cancel()

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusCard
        color: Theme.chrome
        border.color: Theme.line2
    }
    Rectangle {
        y: 10
        width: 3
        height: parent.height - 20
        radius: 1.5
        color: Theme.projectColor(form.editor.color)
    }

    Item {
        id: headLine
        width: parent.width
        height: 36

        Loader {
            anchors.fill: parent
            active: form.line !== null
            Component.onCompleted: if (form.line)
                setSource("ProjectFacts.qml", { line: form.line })
        }
        Label {
            x: 40
            anchors.verticalCenter: parent.verticalCenter
            visible: form.editor.isNew
            text: qsTr("New project")
            font.weight: Font.Medium
        }
        TapHandler {
            onTapped: form.editor.cancel()
        }
        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: Theme.line
        }
    }
    ProjectFields {
        id: fields
        projects: form.projects
        canEdit: form.canEdit
        anchors.top: headLine.bottom
        width: form.isWide && form.hasTasks ? parent.width - tasks.width : parent.width
    }
    ProjectTasks {
        id: tasks
        projects: form.projects
        canEdit: form.canEdit
        visible: form.hasTasks
        x: form.isWide ? parent.width - width : 0
        anchors.top: form.isWide ? headLine.bottom : fields.bottom
        width: form.isWide ? 488 : parent.width
        height: form.isWide ? fields.height : implicitHeight
    }
    Item {
        id: problem
        anchors.bottom: foot.top
        width: parent.width
        height: sentence.text === "" ? 0 : 32

        Icon {
            x: 40
            anchors.verticalCenter: parent.verticalCenter
            visible: sentence.text !== ""
            name: "warn"
            color: Theme.danger
        }
        Label {
            id: sentence
            x: 64
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - x - 16
            type: Label.Type.Small
            text: form.editor.problem
            color: Theme.danger
            Accessible.role: Accessible.AlertMessage
        }
    }
    ProjectFoot {
        id: foot
        projects: form.projects
        isAsked: form.isAsked
        anchors.bottom: parent.bottom
        width: parent.width
    }
}
