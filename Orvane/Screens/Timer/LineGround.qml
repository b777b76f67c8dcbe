// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// Below a line that is pointed at, has the keyboard or is among those chosen.
Rectangle {
    id: ground

    required property LineData line

    color: line.isSelected ? Theme.accentTint : "transparent"

    Rectangle {
        anchors.fill: parent
        visible: ground.line.isHovered || ground.line.isChosen
        radius: Theme.radiusControl
        color: ground.line.isHovered ? Theme.hover : "transparent"
        border.width: ground.line.isChosen ? 2 : 0
        border.color: Theme.accent
    }
}
