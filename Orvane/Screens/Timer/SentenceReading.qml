// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What is understood of a sentence, and what Return will do.
Item {
    id: root

    required property EntryField field
    required property string plan
    property color chipColor: Theme.hover

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
                color: root.chipColor

                Dot {
                    anchors.verticalCenter: parent.verticalCenter
                    visible: chip.modelData.kind === "project"
                    shade: Theme.projectColor(chip.modelData.color)
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
            color: root.chipColor

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
        text: root.plan
        color: Theme.ink2
    }
}
