// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane.Components

// One of several ways, each with an example: ChoiceGrid { choices: [{value, text, example, isChosen}]; onChosen: … }
Grid {
    id: grid

    property var choices: []
    // What a cell needs at least, and how wide those of one row are beside each other.
    property int least: 200
    property var shares: [1, 1]

    signal chosen(value: string)

    readonly property real room: width - (shares.length - 1) * spacing
    readonly property real sum: shares.reduce((total, share) => total + share, 0)
    // Whether each cell has the room that its texts want, which differs by language.
    readonly property bool isWide: {
        for (let i = 0; i < cells.count; ++i) {
            const share = room * shares[i % shares.length] / sum;
            if (share < Math.max(least, (cells.itemAt(i) as ChoiceCell)?.implicitWidth ?? 0))
                return false;
        }
        return true;
    }

    columns: isWide ? shares.length : 1
    spacing: 8

    Repeater {
        id: cells

        model: grid.choices.length

        ChoiceCell {
            id: cell

            required property int index
            readonly property var choice: grid.choices[index]

            width: grid.isWide ? grid.room * grid.shares[index % grid.shares.length] / grid.sum : grid.width
            enabled: grid.enabled
            autoExclusive: false
            text: choice.text
            example: choice.example ?? ""
            checked: choice.isChosen
            onToggled: {
                grid.chosen(choice.value);
                // What holds is what the model says.
                checked = Qt.binding(() => cell.choice.isChosen);
            }
        }
    }
}
