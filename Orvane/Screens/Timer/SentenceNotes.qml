// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What of a sentence was not taken as it was perhaps meant.
Column {
    id: root

    required property EntryField field

    spacing: 4

    Repeater {
        model: root.field.notes

        Row {
            id: note
            required property string modelData
            spacing: 8
            width: root.width

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
