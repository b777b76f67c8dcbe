// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The field that takes an entry as a sentence. Below it stands what Return will do, and what was not taken as it was
// perhaps meant; the time phrase is marked as it is understood.
FocusScope {
    id: root

    required property EntryField field

    readonly property bool saysSomething: input.activeFocus && (root.field.plan !== "" || root.field.chips.length > 0 || root.field.notes.length > 0 || root.field.span !== "")

    height: box.height + (under.visible ? under.height + 4 : 0)

    // The field itself has nothing to undo.
    signal undo

    function take() {
        input.forceActiveFocus(Qt.ShortcutFocusReason);
        input.selectAll();
    }

    Rectangle {
        anchors.fill: box
        anchors.margins: -2
        radius: Theme.radiusControl + 2
        visible: input.activeFocus
        color: Theme.accentTint
    }
    Rectangle {
        id: box
        width: parent.width
        height: 40
        radius: Theme.radiusControl
        color: Theme.content
        border.width: input.activeFocus ? 2 : 1
        border.color: input.activeFocus ? Theme.accent : Theme.field

        Repeater {
            model: root.field.timeRanges

            Rectangle {
                required property var modelData
                readonly property rect from: input.text === root.field.text ? input.positionToRectangle(modelData.start) : Qt.rect(0, 0, 0, 0)
                readonly property rect to: input.text === root.field.text ? input.positionToRectangle(modelData.start + modelData.length) : Qt.rect(0, 0, 0, 0)

                x: input.x + Math.min(from.x, to.x) - 3
                y: 8
                width: Math.abs(to.x - from.x) + 6
                height: 24
                radius: Theme.radiusBlock
                color: Theme.accentTint
                border.color: Theme.accentLine
            }
        }
        TextInput {
            id: input
            anchors.left: parent.left
            anchors.leftMargin: 16
            anchors.right: keys.left
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            clip: true
            focus: true
            font.family: Theme.family
            font.pixelSize: Theme.t13
            color: Theme.ink1
            selectionColor: Theme.accentFill
            selectedTextColor: Theme.inkOnAccent
            selectByMouse: true
            cursorDelegate: Rectangle {
                width: 1.5
                visible: input.cursorVisible
                color: Theme.accent
            }
            text: root.field.text
            onTextEdited: root.field.text = text
            onAccepted: root.field.submit()
            Keys.onPressed: event => {
                if (event.key === Qt.Key_Escape && text !== "") {
                    root.field.text = "";
                    event.accepted = true;
                } else if (event.matches(StandardKey.Undo) && !canUndo) {
                    root.undo();
                    event.accepted = true;
                }
            }
            Accessible.role: Accessible.EditableText
            Accessible.name: qsTr("What are you working on?")
            Accessible.description: root.field.plan

            Connections {
                target: root.field
                function onTextChanged() {
                    if (input.text !== root.field.text)
                        input.text = root.field.text;
                }
            }
        }
        Label {
            anchors.left: input.left
            anchors.leftMargin: input.activeFocus ? 8 : 0
            anchors.right: input.right
            anchors.verticalCenter: parent.verticalCenter
            visible: input.text === "" && input.preeditText === ""
            text: qsTr("What are you working on? @project #tag since 9:40")
            color: Theme.ink3
            Accessible.ignored: true
        }
        KeyCap {
            id: keys
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            keys: input.activeFocus ? "Return" : "Ctrl+N"
        }
    }
    Column {
        id: under
        anchors.top: box.bottom
        anchors.topMargin: 6
        x: 16
        width: parent.width - 2 * x
        visible: root.saysSomething
        spacing: 4

        Item {
            width: parent.width
            height: 24

            Row {
                id: chips
                anchors.verticalCenter: parent.verticalCenter
                spacing: 8

                Repeater {
                    model: root.field.chips

                    Pill {
                        id: chip
                        required property var modelData

                        Dot {
                            anchors.verticalCenter: parent.verticalCenter
                            visible: chip.modelData.kind === "project"
                            color: Theme.projectColor(chip.modelData.color)
                        }
                        Label {
                            anchors.verticalCenter: parent.verticalCenter
                            type: Label.Type.Small
                            saidByPeople: true
                            text: chip.modelData.name
                        }
                    }
                }
                Pill {
                    visible: root.field.span !== ""

                    Icon {
                        anchors.verticalCenter: parent.verticalCenter
                        name: "timer"
                        color: Theme.accent
                    }
                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        type: Label.Type.Small
                        text: root.field.span
                    }
                    Label {
                        anchors.verticalCenter: parent.verticalCenter
                        type: Label.Type.Small
                        text: root.field.spanLength
                        color: Theme.ink2
                    }
                }
            }
            Label {
                anchors.right: parent.right
                anchors.verticalCenter: parent.verticalCenter
                width: Math.min(implicitWidth, parent.width - chips.width - 16)
                type: Label.Type.Small
                saidByPeople: true
                text: root.field.plan
                color: Theme.ink2
            }
        }
        Repeater {
            model: root.field.notes

            Row {
                id: note
                required property string modelData
                spacing: 8
                width: under.width

                Icon {
                    name: "info"
                    color: Theme.warning
                }
                Label {
                    width: note.width - 24
                    type: Label.Type.Small
                    text: note.modelData
                    color: Theme.ink2
                    elide: Text.ElideNone
                    wrapMode: Text.Wrap
                    Accessible.role: Accessible.AlertMessage
                }
            }
        }
    }
}
