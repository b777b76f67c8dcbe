// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane.Components

// What the keys do here, along the lower edge: KeyBar { hints: [{keys: "⏎", text: qsTr("Save")}] }. Several caps of one
// hint stand apart by spaces. Hints that have no room are left out from the end.
Rectangle {
    id: bar

    property var hints: []

    implicitHeight: 32
    color: Theme.chrome
    Accessible.role: Accessible.StaticText
    Accessible.name: hints.filter(hint => hint.keys !== "").map(hint => hint.text + ", " + KeyNames.text(hint.keys)).join("; ")

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.line
    }
    Row {
        id: row

        x: Theme.space24
        y: 1
        height: parent.height - 1
        spacing: Theme.space20

        Repeater {
            // A command may have no keys.
            model: bar.hints.filter(hint => hint.keys !== "")

            Row {
                id: hint

                required property var modelData

                height: row.height
                spacing: 6
                opacity: x + width > bar.width - 2 * Theme.space24 + row.spacing ? 0 : 1

                Row {
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: 6

                    Repeater {
                        model: hint.modelData.keys.split(" ")

                        KeyCap {
                            required property string modelData

                            keys: modelData
                        }
                    }
                }
                Label {
                    anchors.verticalCenter: parent.verticalCenter
                    type: Label.Type.Caption
                    color: Theme.ink3
                    text: hint.modelData.text
                    Accessible.ignored: true
                }
            }
        }
    }
}
