// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What the server refused, above the list until it is answered.
ListView {
    id: list

    required property RefusedList refused

    height: count === 0 ? 0 : Math.min(contentHeight, 176)
    visible: count > 0
    clip: true
    spacing: Theme.space8
    boundsBehavior: Flickable.StopAtBounds
    interactive: contentHeight > height
    model: refused
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Refused changes")

    delegate: SetAsideRow {
        refused: list.refused
        width: list.width
        onActiveFocusChanged: if (activeFocus)
            list.currentIndex = index
    }
}
