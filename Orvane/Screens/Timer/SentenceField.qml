// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The field that takes an entry as a sentence. Below it stands what Return will do, and what was not taken as it was
// perhaps meant; the time phrase is marked as it is understood.
FocusScope {
    id: root

    required property EntryField field

    readonly property bool saysSomething: input.isTyped && (root.field.plan !== "" || root.field.chips.length > 0 || root.field.notes.length > 0 || root.field.span !== "")

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
        visible: input.isTyped
        color: Theme.accentTint
    }
    Rectangle {
        id: box
        width: parent.width
        height: 40
        radius: Theme.radiusControl
        color: Theme.content
        border.width: input.isTyped ? 2 : 1
        border.color: input.isTyped ? Theme.accent : Theme.field

        SentenceInput {
            id: input
            field: root.field
            focus: true
            anchors.left: parent.left
            anchors.leftMargin: 16
            anchors.right: keys.left
            anchors.rightMargin: 8
            anchors.verticalCenter: parent.verticalCenter
            onAccepted: root.field.submit()
            onUndo: root.undo()
            Keys.onEscapePressed: event => {
                event.accepted = root.field.text !== "";
                root.field.text = "";
            }
        }
        KeyCap {
            id: keys
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            keys: input.isTyped ? "Return" : "Ctrl+N"
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

        SentenceReading {
            field: root.field
            plan: root.field.plan
            width: parent.width
        }
        SentenceNotes {
            field: root.field
            width: parent.width
        }
    }
}
