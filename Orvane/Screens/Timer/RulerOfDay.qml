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

        // Many may be a few pixels high: what is written in the higher ones is made for them alone.
        Rectangle {
            id: block
            required property var modelData
            readonly property bool isShared: modelData.parts.length > 1

            x: 40
            y: root.at(modelData.from) + 0.5
            width: root.width - 40
            height: Math.max(3, root.at(modelData.to) - root.at(modelData.from) - 1)
            color: isShared ? "transparent" : Theme.tintOf(stripe.color)

            Loader {
                readonly property bool isWanted: block.isShared

                anchors.fill: parent
                onIsWantedChanged: setSource("RulerShares.qml", { parts: block.modelData.parts })
            }
            Rectangle {
                id: stripe
                width: 3
                height: parent.height
                color: Theme.projectColor(block.modelData.parts[0].color)
            }
            Loader {
                readonly property bool isWanted: block.height >= 16

                anchors.fill: parent
                clip: true
                onIsWantedChanged: isWanted ? setSource("RulerWords.qml", { block: block.modelData }) : source = ""
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
