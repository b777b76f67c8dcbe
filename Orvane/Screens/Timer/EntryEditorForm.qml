// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// An entry edited in its place: Return saves, Escape leaves it as it was.
FocusScope {
    id: form

    required property TimerModel timer
    required property TimerColumns columns

    readonly property bool isWide: columns.isWide
    readonly property EntryEditor editor: timer.editor
    readonly property int timeWidth: 66

    implicitHeight: fields.height + 8 + 36
    focus: true
    Accessible.role: Accessible.Form
    Accessible.name: qsTr("Edit the entry")

    Component.onCompleted: {
        description.forceActiveFocus(Qt.OtherFocusReason);
        description.selectAll();
    }

    Keys.onReturnPressed: form.editor.save()
    Keys.onEnterPressed: form.editor.save()
    Keys.onEscapePressed: form.editor.cancel()

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
        color: Theme.projectColor(form.editor.projectColor)
    }

    Item {
        id: fields
        x: 8
        y: 8
        width: parent.width - 16
        height: form.isWide ? 32 : 72

        DescriptionField {
            id: description
            width: form.isWide ? project.x - 8 : times.x - 8
            editor: form.editor
            suggestions: form.timer.suggestions
        }
        ProjectField {
            id: project
            x: form.isWide ? tags.x - width - 8 : times.x
            width: form.isWide ? 192 : fields.width - times.x
            picker: form.timer.picker
            project: form.editor.project
            task: form.editor.task
            shade: form.editor.projectColor
            isSplit: form.editor.isSplit
            onPicked: (projectId, taskId) => form.editor.setProject(projectId, taskId)
        }
        TextEntry {
            id: tags
            x: form.isWide ? billable.x - width - 8 : 0
            y: form.isWide ? 0 : 40
            width: form.isWide ? 104 : times.x - 8
            placeholderText: qsTr("#tag")
            Accessible.name: qsTr("Tags")
            wrong: form.editor.wrongField === EntryEditor.Tags
            text: form.editor.tags
            onTextEdited: form.editor.tags = text
            onAccepted: form.editor.save()
        }
        IconButton {
            id: billable
            x: form.isWide ? times.x - width - 8 : times.x
            y: form.isWide ? 2 : 42
            iconName: "bill"
            text: form.editor.isBillable ? qsTr("Billable") : qsTr("Not billable")
            checked: form.editor.isBillable
            onClicked: form.editor.setBillable(!form.editor.isBillable)
        }
        Item {
            id: times
            x: fields.width - width
            y: form.isWide ? 0 : 40
            width: (form.isWide ? 0 : 36) + 2 * form.timeWidth + 12 + 8 + 72
            height: 32

            Row {
                anchors.right: parent.right
                spacing: 0

                TimeEntry {
                    id: start
                    width: form.timeWidth
                    Accessible.name: qsTr("Start")
                    wrong: form.editor.wrongField === EntryEditor.Start
                    text: form.editor.start
                    onTextEdited: form.editor.start = text
                    onSettled: form.editor.settle(EntryEditor.Start)
                    onNudged: minutes => form.editor.nudge(EntryEditor.Start, minutes)
                    onAccepted: form.editor.save()
                }
                Label {
                    width: 12
                    height: 32
                    horizontalAlignment: Text.AlignHCenter
                    text: "–"
                    color: Theme.ink3
                    Accessible.ignored: true
                }
                TimeEntry {
                    id: stop
                    width: form.timeWidth
                    Accessible.name: qsTr("End")
                    enabled: !form.editor.isRunning
                    wrong: form.editor.wrongField === EntryEditor.Stop
                    text: form.editor.stop
                    onTextEdited: form.editor.stop = text
                    onSettled: form.editor.settle(EntryEditor.Stop)
                    onNudged: minutes => form.editor.nudge(EntryEditor.Stop, minutes)
                    onAccepted: form.editor.save()
                }
                Item {
                    width: 8
                    height: 1
                }
                TimeEntry {
                    id: length
                    width: 72
                    Accessible.name: qsTr("Length")
                    enabled: !form.editor.isRunning
                    wrong: form.editor.wrongField === EntryEditor.Length
                    text: form.editor.length
                    onTextEdited: form.editor.length = text
                    onSettled: form.editor.settle(EntryEditor.Length)
                    onNudged: minutes => form.editor.nudge(EntryEditor.Stop, minutes)
                    onAccepted: form.editor.save()
                }
            }
        }
    }
    Icon {
        x: 8
        anchors.verticalCenter: hint.verticalCenter
        name: form.editor.problem === "" ? "keyboard" : "warn"
        color: form.editor.problem === "" ? Theme.ink3 : Theme.danger
    }
    Label {
        id: hint
        x: 32
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 10
        width: parent.width - 40
        type: Label.Type.Small
        text: form.editor.problem === "" ? qsTr("Type 930, 9:30 or -15 for 15 min ago. ↑ ↓ change it by a minute, with ⇧ by 15.") : form.editor.problem
        color: form.editor.problem === "" ? Theme.ink2 : Theme.danger
    }
}
