// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Today's entries along the hours. The list beside it says the same in words.
Item {
    id: root

    required property DayRuler ruler

    readonly property real perMinute: height / Math.max(60, (ruler.lastHour - ruler.firstHour) * 60)
    readonly property real nowY: at(ruler.nowMinute)

    function at(minute: real): real {
        return (minute - ruler.firstHour * 60) * perMinute;
    }

    Accessible.ignored: true

    Repeater {
        model: root.ruler.lastHour - root.ruler.firstHour + 1

        Item {
            id: hour
            required property int index
            y: root.at((root.ruler.firstHour + index) * 60)
            width: root.width

            Rectangle {
                x: 40
                width: parent.width - 40
                height: 1
                color: Theme.line
            }
            Label {
                y: -8
                visible: Math.abs(hour.y - root.nowY) > 14
                type: Label.Type.Caption
                text: root.ruler.hourLabel(root.ruler.firstHour + hour.index)
                color: Theme.ink3
            }
        }
    }
    Repeater {
        model: root.ruler.blocks

        Item {
            id: block
            required property var modelData
            readonly property var shades: modelData.parts.map(part => Theme.projectColor(part.color))
            readonly property real sum: modelData.parts.reduce((total, part) => total + part.share, 0)

            x: 40
            y: root.at(modelData.from) + 0.5
            width: root.width - 40
            height: Math.max(3, root.at(modelData.to) - root.at(modelData.from) - 1)
            clip: true

            Row {
                anchors.fill: parent

                Repeater {
                    model: block.modelData.parts

                    Rectangle {
                        required property int index
                        required property var modelData
                        width: block.width * modelData.share / block.sum
                        height: block.height
                        color: Theme.tintOf(block.shades[index])

                        Rectangle {
                            visible: block.shades.length > 1
                            anchors.bottom: parent.bottom
                            width: parent.width
                            height: Math.min(3, parent.height)
                            color: block.shades[parent.index]
                        }
                    }
                }
            }
            Rectangle {
                width: 3
                height: parent.height
                color: block.shades[0]
            }
            LiveDot {
                id: live
                x: 10
                y: 8
                size: 6
                visible: block.modelData.isRunning && block.height >= 22
            }
            Label {
                x: live.visible ? 22 : 10
                y: block.height < 24 ? (block.height - height) / 2 : 3
                width: block.width - x - 6
                visible: block.height >= 16
                type: block.height < 24 ? Label.Type.Caption : Label.Type.Small
                saidByPeople: true
                text: block.modelData.title
                font.weight: Font.Medium
            }
            Label {
                x: 10
                y: 19
                width: block.width - x - 6
                visible: block.height > 40
                type: Label.Type.Caption
                saidByPeople: true
                text: block.modelData.places
                color: Theme.ink2
            }
        }
    }
    Rectangle {
        x: 36
        y: root.nowY
        width: root.width - 36
        height: 1.5
        color: Theme.accent
    }
    Label {
        y: root.nowY - 8
        type: Label.Type.Caption
        text: root.ruler.now
        font.weight: Font.DemiBold
        color: Theme.accent
    }
}
