// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane.Components

// What a change makes of an entry, field by field: what it says now, and what it would say.
Column {
    id: table

    property var fields: []

    Accessible.role: Accessible.List
    Accessible.name: qsTr("What changes")

    Item {
        width: parent.width
        height: 24

        Label {
            x: 96
            height: parent.height
            type: Label.Type.Caption
            text: qsTr("Now")
            color: Theme.ink3
        }
        Label {
            x: 96 + (parent.width - 96) / 2
            height: parent.height
            type: Label.Type.Caption
            text: qsTr("Proposed")
            color: Theme.ink3
        }
    }
    Repeater {
        model: table.fields

        Item {
            id: row

            required property var modelData

            width: table.width
            height: 28
            Accessible.role: Accessible.ListItem
            Accessible.name: qsTr("%1: now %2, proposed %3").arg(modelData.name).arg(modelData.before).arg(modelData.after)

            Label {
                width: 88
                height: parent.height
                type: Label.Type.Small
                text: row.modelData.name
                color: Theme.ink2
                Accessible.ignored: true
            }
            Label {
                x: 96
                width: (parent.width - 96) / 2 - 12
                height: parent.height
                saidByPeople: true
                text: row.modelData.before
                color: Theme.ink2
                Accessible.ignored: true
            }
            Label {
                x: 96 + (parent.width - 96) / 2
                width: parent.width - x
                height: parent.height
                saidByPeople: true
                font.weight: Font.Medium
                text: row.modelData.after
                Accessible.ignored: true
            }
            Rectangle {
                width: parent.width
                height: 1
                color: Theme.line
            }
        }
    }
}
