// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A half of an entry's time, in the colour of what it goes to.
Item {
    id: block

    required property int index
    required property string description
    required property string times
    required property string projectColor

    readonly property color shade: projectColor === "" ? Theme.none : Theme.projectColor(projectColor)

    Accessible.ignored: true

    // Only the outer corners of bar and ground are round.
    Item {
        width: Math.min(3, parent.width)
        height: parent.height
        clip: true

        Rectangle {
            width: 2 * radius
            height: parent.height
            radius: Theme.radiusBlock
            color: block.shade
        }
    }
    Item {
        x: 3
        width: Math.max(0, parent.width - x)
        height: parent.height
        clip: true

        Rectangle {
            x: -radius
            width: parent.width + radius
            height: parent.height
            radius: Theme.radiusBlock
            color: Theme.tintOf(block.shade)
        }
    }
    Label {
        x: 10
        y: 3
        width: Math.max(0, parent.width - 16)
        visible: width > 24
        type: Label.Type.Small
        font.weight: Font.Medium
        text: block.description === "" ? qsTr("No description") : block.description
        saidByPeople: true
        Accessible.ignored: true
    }
    Label {
        x: 10
        y: 19
        width: Math.max(0, parent.width - 16)
        visible: width >= implicitWidth
        type: Label.Type.Caption
        text: block.times
        color: Theme.ink2
        Accessible.ignored: true
    }
}
