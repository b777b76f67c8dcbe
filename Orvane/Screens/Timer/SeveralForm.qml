// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The chosen entries edited as one: Return saves, Escape leaves them as they were.
FocusScope {
    id: form

    required property TimerModel timer

    readonly property SeveralEntries several: timer.several

    function take(): void {
        description.forceActiveFocus(Qt.TabFocusReason);
    }

    implicitHeight: 4 + 36 + 32 + 4 + Math.max(24, changes.height) + 8
    Accessible.role: Accessible.Form
    Accessible.name: qsTr("Edit %1").arg(several.title)

    Keys.onReturnPressed: form.several.save()
    Keys.onEnterPressed: form.several.save()
    Keys.onEscapePressed: form.several.clear()
    // The list's keys would choose another row.
    Keys.onPressed: event => event.accepted = [Qt.Key_Up, Qt.Key_Down, Qt.Key_Left, Qt.Key_Right].includes(event.key)

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusCard
        color: Theme.chrome
        border.color: Theme.line2
    }
    Label {
        id: title
        x: 16
        y: 4
        height: 36
        text: form.several.title
        font.weight: Font.DemiBold
    }
    Label {
        anchors.left: title.right
        anchors.leftMargin: Theme.space8
        y: 4
        height: 36
        text: form.several.about
        color: Theme.ink2
    }
    QuietButton {
        anchors.right: parent.right
        anchors.rightMargin: 8
        y: 8
        dangerous: true
        text: qsTr("Delete")
        keys: "Del"
        Accessible.name: qsTr("Delete %1").arg(form.several.title)
        onClicked: form.several.remove()
    }
    Item {
        id: fields
        x: 8
        y: 40
        width: parent.width - 16
        height: 32

        TextEntry {
            id: description
            width: project.x - 8
            placeholderText: form.several.descriptionHint
            Accessible.name: qsTr("Description of all")
            text: form.several.description
            onTextEdited: form.several.description = text
            onAccepted: form.several.save()
        }
        ProjectField {
            id: project
            x: tags.x - width - 8
            width: 168
            picker: form.timer.picker
            project: form.several.project
            task: form.several.task
            shade: form.several.projectColor
            isSplit: false
            onPicked: (projectId, taskId) => form.several.setProject(projectId, taskId)
        }
        TextEntry {
            id: tags
            x: billable.x - width - 8
            width: 128
            placeholderText: form.several.tagsHint
            Accessible.name: qsTr("Tags of all")
            wrong: form.several.problem !== ""
            text: form.several.tags
            onTextEdited: form.several.tags = text
            onAccepted: form.several.save()
        }
        IconButton {
            id: billable
            x: save.x - width - 8
            y: 2
            iconName: "bill"
            text: form.several.isBillable ? qsTr("All billable") : qsTr("Not all billable")
            checked: form.several.isBillable
            onClicked: form.several.turnBillable()
        }
        PrimaryButton {
            id: save
            anchors.right: parent.right
            tall: true
            text: qsTr("Save")
            keys: "Return"
            onClicked: form.several.save()
        }
    }
    Label {
        id: changes
        x: 16
        y: 76
        width: parent.width - 32
        type: Label.Type.Small
        wrapMode: Text.Wrap
        saidByPeople: true
        text: form.several.problem === "" ? form.several.changes : form.several.problem
        color: form.several.problem === "" ? Theme.ink2 : Theme.danger
        Accessible.role: form.several.problem === "" ? Accessible.StaticText : Accessible.AlertMessage
    }
}
