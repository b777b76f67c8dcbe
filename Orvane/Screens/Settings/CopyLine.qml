// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A command for a terminal, to be selected or copied whole.
Item {
    id: line

    required property string name
    required property string command
    // Where the commands begin, which is the same for those below each other.
    property int lead: least
    readonly property int least: Math.max(84, 24 + Math.ceil(label.implicitWidth) + 12)
    property bool isCopied: false

    function copy(): void {
        text.selectAll();
        text.copy();
        text.deselect();
        isCopied = true;
        forgotten.restart();
    }

    height: visible ? frame.height + 8 : 0
    onCommandChanged: isCopied = false

    Timer {
        id: forgotten

        interval: 3000
        onTriggered: line.isCopied = false
    }
    Label {
        id: label

        x: 24
        y: 4
        height: 28
        width: line.lead - x
        type: Label.Type.Small
        color: Theme.ink2
        text: line.name
        Accessible.ignored: true
    }
    Rectangle {
        id: frame

        x: line.lead
        y: 4
        width: parent.width - x - button.width - 12
        height: Math.max(28, text.contentHeight + 14)
        radius: Theme.radiusControl
        color: Theme.content
        border.color: text.activeFocus ? Theme.accent : Theme.line2
        border.width: text.activeFocus ? 2 : 1

        TextEdit {
            id: text

            x: 11
            y: 7
            width: parent.width - 2 * x
            readOnly: true
            selectByMouse: true
            selectByKeyboard: true
            activeFocusOnTab: true
            wrapMode: TextEdit.Wrap
            text: line.command
            textFormat: TextEdit.PlainText
            color: Theme.ink1
            selectionColor: Theme.accentLine
            selectedTextColor: Theme.ink1
            font.family: Theme.monoFamily
            font.pixelSize: Theme.t12
            Accessible.role: Accessible.EditableText
            Accessible.readOnly: true
            Accessible.name: line.name
            // The whole of it where nothing is selected.
            Keys.onPressed: event => {
                event.accepted = event.matches(StandardKey.Copy) && selectedText === "";
                if (event.accepted)
                    line.copy();
            }
        }
    }
    ActionButton {
        id: button

        y: 4
        anchors.right: parent.right
        width: Math.max(92, implicitWidth)
        iconName: line.isCopied ? "check" : "copy"
        text: line.isCopied ? qsTr("Copied") : qsTr("Copy")
        enabled: line.command !== ""
        Accessible.name: line.isCopied ? qsTr("%1: copied").arg(line.name) : qsTr("%1: copy the command").arg(line.name)
        onClicked: line.copy()
    }
}
