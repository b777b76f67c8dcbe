// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A client or a tag.
Item {
    id: line

    required property ProjectsModel projects
    required property NameList names
    required property int index
    required property string itemId
    required property string name
    required property string detail
    required property bool isArchived
    property bool isChosen: false

    readonly property bool isTag: names === projects.tags
    readonly property bool isEdited: names.editedId === itemId
    readonly property bool isAsked: projects.removal.itemId === itemId

    height: isEdited ? form.height : isAsked ? 36 + answers.height + 12 : 36
    Accessible.role: Accessible.ListItem
    Accessible.name: detail === "" ? name : qsTr("%1, %2").arg(name).arg(detail)
    Accessible.focusable: true
    Accessible.onPressAction: line.names.edit(line.itemId)
    Keys.onReturnPressed: event => {
        event.accepted = !line.isEdited && !line.isAsked;
        if (event.accepted)
            line.names.edit(line.itemId);
    }

    HoverHandler {
        id: hover
    }
    TapHandler {
        enabled: !line.isEdited && !line.isAsked && line.names.mayEdit
        onTapped: line.names.edit(line.itemId)
    }
    Rectangle {
        width: parent.width
        height: 36
        visible: !line.isEdited && (hover.hovered || line.isChosen)
        radius: Theme.radiusControl
        color: hover.hovered ? Theme.hover : "transparent"
        border.width: line.isChosen ? 2 : 0
        border.color: Theme.accent
    }
    Label {
        id: title
        x: 16
        height: 36
        width: Math.min(implicitWidth, parent.width - 260)
        visible: !line.isEdited
        saidByPeople: true
        text: line.isTag ? "#" + line.name : line.name
        font.weight: Font.Medium
        color: line.isArchived ? Theme.ink2 : Theme.ink1
        Accessible.ignored: true
    }
    Label {
        anchors.left: title.right
        anchors.leftMargin: 8
        height: 36
        visible: !line.isEdited
        type: Label.Type.Small
        text: line.detail
        color: Theme.ink3
        Accessible.ignored: true
    }
    Row {
        anchors.right: parent.right
        anchors.rightMargin: 8
        y: 4
        spacing: 4
        visible: !line.isEdited && !line.isAsked && line.names.mayEdit && (hover.hovered || line.isChosen)

        IconButton {
            visible: !line.isTag
            enabled: !line.projects.isAway
            iconName: line.isArchived ? "undo" : "archive"
            text: line.isArchived ? qsTr("Restore %1").arg(line.name) : qsTr("Archive %1").arg(line.name)
            onClicked: line.names.setArchived(line.itemId, !line.isArchived)
        }
        IconButton {
            enabled: !line.projects.isAway
            iconName: "x"
            text: qsTr("Delete %1…").arg(line.name)
            onClicked: line.projects.removal.ask(line.isTag ? CatalogRemoval.Tag : CatalogRemoval.Client, line.itemId)
        }
    }
    WantedLoader {
        id: form
        width: parent.width
        isWanted: line.isEdited
        page: "NameForm.qml"
        properties: ({ names: line.names })
    }
    WantedLoader {
        id: answers
        x: 16
        y: 40
        width: parent.width - 32
        isWanted: line.isAsked
        page: "RemovalAnswers.qml"
        properties: ({ removal: line.projects.removal })
    }
}
