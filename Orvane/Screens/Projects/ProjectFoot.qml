// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What can be done with the project as a whole.
FocusScope {
    id: foot

    required property ProjectsModel projects
    required property bool isAsked

    readonly property ProjectEditor editor: projects.editor
    readonly property bool canAct: projects.mayEdit && !projects.isAway

    implicitHeight: isAsked ? answers.height + 24 : 44
    height: implicitHeight

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.line
    }
    Item {
        anchors.fill: parent
        visible: !foot.isAsked

        ActionButton {
            id: archive
            x: 40
            anchors.verticalCenter: parent.verticalCenter
            visible: foot.projects.mayEdit && !foot.editor.isNew
            enabled: foot.canAct
            busy: foot.editor.isBusy
            iconName: foot.editor.isArchived ? "undo" : "archive"
            text: foot.editor.isArchived ? qsTr("Restore") : qsTr("Archive")
            onClicked: foot.editor.isArchived ? foot.editor.restore() : foot.editor.archive()
        }
        Label {
            anchors.left: archive.visible ? archive.right : parent.left
            anchors.leftMargin: archive.visible ? 8 : 40
            anchors.right: remove.visible ? remove.left : parent.right
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            type: Label.Type.Small
            text: foot.projects.isAway ? qsTr("Projects can be changed again once the server is back.") : !foot.projects.mayEdit ? qsTr("Administrators of this workspace change its projects.") : foot.editor.isNew ? qsTr("⏎ makes the project. Tasks can be added afterwards.") : foot.editor.isArchived ? qsTr("It can be tracked on again afterwards.") : qsTr("Keeps its time; nobody can track on it until it is restored.")
            color: Theme.ink2
        }
        QuietButton {
            id: remove
            anchors.right: parent.right
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            visible: archive.visible
            enabled: foot.canAct
            dangerous: true
            text: qsTr("Delete…")
            onClicked: foot.projects.removal.ask(CatalogRemoval.Project, foot.editor.projectId)
        }
    }
    WantedLoader {
        id: answers
        x: 40
        y: 12
        width: parent.width - 56
        isWanted: foot.isAsked
        page: "RemovalAnswers.qml"
        properties: ({ removal: foot.projects.removal, canArchive: !foot.editor.isArchived })

        Connections {
            target: answers.item
            ignoreUnknownSignals: true
            function onArchived() {
                foot.editor.archive();
            }
        }
    }
}
