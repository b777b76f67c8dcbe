// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Where a sentence is typed: one line, with the time phrase marked as it is understood and the mention that is being
// typed underlined.
FocusScope {
    id: root

    required property EntryField field

    property int type: Label.Type.Body
    property int textSize: Theme.t13
    property int markHeight: 24
    property int mentionStart: 0
    property int mentionEnd: 0
    property alias cursor: input.cursorPosition
    readonly property bool isTyped: input.activeFocus

    signal accepted

    // The field itself has nothing to undo.
    signal undo

    function selectAll() {
        input.selectAll();
    }

    // Where a part of the sentence stands; nowhere while the sentence is about to be another one.
    function placeOf(start: int, end: int): rect {
        // With the cursor the line moves in its frame.
        if (input.text !== root.field.text || input.cursorRectangle.height < 0)
            return Qt.rect(0, 0, 0, 0);
        const from = input.positionToRectangle(start);
        const to = input.positionToRectangle(end);
        return Qt.rect(Math.min(from.x, to.x), 0, Math.abs(to.x - from.x), 0);
    }

    height: 28

    Item {
        anchors.fill: parent
        anchors.leftMargin: -4
        anchors.rightMargin: -4
        clip: true

        Repeater {
            model: root.field.timeRanges

            Rectangle {
                required property var modelData
                readonly property rect place: root.placeOf(modelData.start, modelData.start + modelData.length)

                x: 4 + place.x - 3
                anchors.verticalCenter: parent.verticalCenter
                width: place.width + 6
                height: root.markHeight
                radius: Theme.radiusBlock
                color: Theme.accentTint
                border.color: Theme.accentLine
            }
        }
        Rectangle {
            readonly property rect place: root.placeOf(root.mentionStart, root.mentionEnd)

            x: 4 + place.x
            y: (parent.height + root.markHeight) / 2 - height
            visible: root.mentionEnd > root.mentionStart
            width: place.width
            height: 2
            color: Theme.accent
        }
    }
    TextInput {
        id: input
        anchors.fill: parent
        verticalAlignment: TextInput.AlignVCenter
        clip: true
        focus: true
        font.family: Theme.family
        font.pixelSize: root.textSize
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
        onAccepted: root.accepted()
        Keys.onPressed: event => {
            if (event.matches(StandardKey.Undo) && !canUndo) {
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
        x: input.activeFocus ? 8 : 0
        anchors.verticalCenter: parent.verticalCenter
        width: parent.width - x
        visible: input.text === "" && input.preeditText === ""
        type: root.type
        text: qsTr("What are you working on? @project #tag since 9:40")
        color: Theme.ink3
        Accessible.ignored: true
    }
}
