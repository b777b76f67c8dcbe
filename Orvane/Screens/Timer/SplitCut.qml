// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A part's place in the whole, and the grip at its end.
Item {
    id: cut

    required property SplitModel split
    required property int count
    // The width of all parts.
    required property real whole
    required property int index
    required property int percent
    required property int percentBefore
    required property string projectColor

    readonly property bool isFirst: index === 0
    readonly property bool isLast: index === count - 1
    readonly property color shade: projectColor === "" ? Theme.none : Theme.projectColor(projectColor)
    readonly property real from: Math.round(whole * percentBefore / 100)
    readonly property real to: Math.round(whole * (percentBefore + percent) / 100)

    x: from
    width: to - from
    Accessible.ignored: true

    // Only the outer corners are round.
    Item {
        id: face
        x: cut.isFirst ? 0 : 3
        width: Math.max(1, parent.width - x - (cut.isLast ? 0 : 3))
        height: parent.height
        clip: true

        Rectangle {
            x: cut.isFirst ? 0 : -radius
            width: parent.width - x + (cut.isLast ? 0 : radius)
            height: parent.height
            radius: Theme.radiusBlock
            color: cut.shade
        }
        Item {
            width: parent.width
            height: parent.height - 4
            clip: true

            Rectangle {
                x: cut.isFirst ? 0 : -radius
                width: parent.width - x + (cut.isLast ? 0 : radius)
                height: parent.height + radius
                radius: Theme.radiusBlock
                color: Theme.tintOf(cut.shade)
            }
        }
        Label {
            x: 10
            y: 4
            height: 20
            visible: face.width > implicitWidth + 16
            type: Label.Type.Small
            font.weight: Font.Medium
            text: qsTr("%1%").arg(cut.percent)
            Accessible.ignored: true
        }
    }
    Rectangle {
        x: parent.width - 2
        y: 6
        width: 4
        height: 20
        radius: 2
        visible: !cut.isLast
        color: grip.containsMouse || grip.pressed ? Theme.ink1 : Theme.ink2
        Accessible.role: Accessible.Slider
        Accessible.name: qsTr("Border between part %1 and %2").arg(cut.index + 1).arg(cut.index + 2)
        Accessible.onIncreaseAction: cut.split.nudgePercent(cut.index, 1)
        Accessible.onDecreaseAction: cut.split.nudgePercent(cut.index, -1)
    }
    MouseArea {
        id: grip
        x: parent.width - width / 2
        width: 16
        height: parent.height
        enabled: !cut.isLast
        hoverEnabled: true
        preventStealing: true
        cursorShape: Qt.SplitHCursor
        onPositionChanged: mouse => {
            if (pressed)
                cut.split.moveBorder(cut.index, mapToItem(cut.parent, mouse.x, 0).x / cut.whole);
        }
        onReleased: cut.split.settlePercents()
    }
}
