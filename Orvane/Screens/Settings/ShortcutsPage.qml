// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Every command and its keys; menus, tooltips and the key bar read the same table.
FocusScope {
    id: page

    required property AppModel app
    required property SettingsModel settings

    readonly property ShortcutRows shortcuts: settings.shortcuts
    readonly property bool isNarrow: width < 720
    property bool isAsked: false

    TextEntry {
        id: search
        x: 32
        y: 16
        width: Math.min(400, restore.x - x - 12)
        height: 28
        iconName: "search"
        placeholderText: page.isNarrow ? qsTr("Find a command") : qsTr("Find a command, or press its keys")
        text: page.shortcuts.query
        onTextEdited: page.shortcuts.query = text
        // Keys that write nothing are looked for as keys.
        Keys.onPressed: event => {
            const chord = KeyNames.chord(event.key, event.modifiers);
            event.accepted = /^(Ctrl|Alt|Meta)\+/.test(chord) && chord !== "Ctrl+A" && chord !== "Ctrl+V" && chord !== "Ctrl+C" && chord !== "Ctrl+X";
            if (event.accepted)
                page.shortcuts.query = chord;
        }
        Keys.onShortcutOverride: event => event.accepted = /^(Ctrl|Alt|Meta)\+/.test(KeyNames.chord(event.key, event.modifiers))
        Keys.onEscapePressed: page.shortcuts.query = ""
    }
    Label {
        anchors.left: search.right
        anchors.leftMargin: 12
        anchors.right: restore.left
        anchors.rightMargin: 12
        anchors.verticalCenter: search.verticalCenter
        visible: !page.isNarrow && implicitWidth <= width
        type: Label.Type.Small
        text: qsTr("Menus, tooltips and the key bar read this table.")
        color: Theme.ink2
    }
    ActionButton {
        id: restore
        anchors.right: parent.right
        anchors.rightMargin: 32
        anchors.verticalCenter: search.verticalCenter
        enabled: page.shortcuts.isAnyChanged && !page.isAsked
        text: qsTr("Restore All…")
        onClicked: {
            page.isAsked = true;
            keep.forceActiveFocus(Qt.OtherFocusReason);
        }
    }
    Column {
        id: answers
        x: 32
        anchors.top: search.bottom
        anchors.topMargin: 8
        width: parent.width - 64
        height: page.isAsked ? implicitHeight + 8 : 0
        visible: page.isAsked
        spacing: 4
        Keys.onEscapePressed: page.isAsked = false

        AnswerRow {
            id: keep
            width: parent.width
            titleWidth: 120
            text: qsTr("Keep")
            effect: qsTr("Your keys stay as you chose them.")
            onClicked: page.isAsked = false
        }
        AnswerRow {
            width: parent.width
            titleWidth: 120
            text: qsTr("Restore All")
            effect: qsTr("Every command has the keys it came with. It can be undone.")
            onClicked: {
                page.isAsked = false;
                page.shortcuts.restoreAll();
            }
        }
    }
    Item {
        id: heads
        x: 32
        anchors.top: answers.bottom
        anchors.topMargin: page.isAsked ? 0 : 8
        width: parent.width - 64
        height: 28

        Repeater {
            model: [
                { text: qsTr("Command"), at: 12 },
                { text: page.isNarrow ? "" : qsTr("Key bar"), at: heads.width - 208 - 16 - 168 },
                { text: qsTr("Keys"), at: heads.width - 208 + 5 }
            ]

            Label {
                required property var modelData

                x: modelData.at
                height: 28
                type: Label.Type.Caption
                text: modelData.text
                color: Theme.ink3
            }
        }
    }
    ListView {
        id: list
        x: 32
        anchors.top: heads.bottom
        anchors.bottom: parent.bottom
        width: parent.width - 64
        clip: true
        focus: true
        boundsBehavior: Flickable.StopAtBounds
        model: page.shortcuts
        bottomMargin: Theme.space16
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Shortcuts")

        delegate: ShortcutLine {
            width: list.width
            shortcuts: page.shortcuts
            isNarrow: page.isNarrow
        }
    }
}
