// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// What lies above the window: a menu, a card, a sheet behind which the window waits.
Item {
    id: page

    anchors.fill: parent

    Component.onCompleted: {
        menu.open();
        sheet.open();
    }

    Column {
        x: 40
        y: 40
        spacing: 8

        Repeater {
            model: 24

            Label {
                required property int index

                text: "A row below, " + index
            }
        }
    }
    Panel {
        x: 440
        y: 560
        width: 480
        height: 200
        level: 2
        radius: Theme.radiusCard

        Label {
            x: 16
            y: 16
            type: Label.Type.Title
            text: "A card"
        }
    }
    MenuPanel {
        id: menu

        x: 240
        y: 560
        title: "Entry"

        MenuRow { text: "Continue"; iconName: "play"; keys: "C" }
        MenuRow { text: "Split…"; iconName: "split"; keys: "S"; lit: true }
        MenuRow { text: "Duplicate"; iconName: "copy"; keys: "Ctrl+D" }
        MenuLine {}
        MenuRow { text: "Delete"; iconName: "x"; keys: "Backspace"; dangerous: true }
    }
    Sheet {
        id: sheet

        title: "Split “Rate limits per key”"
        width: 640
        height: 300

        Item {
            anchors.fill: parent

            Label {
                type: Label.Type.Title
                text: sheet.title
            }
            Segments {
                anchors.right: parent.right
                texts: ["At a Time", "By Percent"]
            }
            TextEntry {
                y: 56
                width: 240
                tall: true
                keys: "Ctrl+N"
                placeholderText: "What are you working on?"
            }
            Row {
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                spacing: 8

                QuietButton { tall: true; text: "Cancel"; keys: "Esc" }
                PrimaryButton { tall: true; text: "Split"; keys: "Return" }
            }
        }
    }
}
