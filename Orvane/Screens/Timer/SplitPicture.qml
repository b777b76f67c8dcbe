// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The entry's time from its start to its end, and the handle that divides it.
Item {
    id: picture

    required property SplitModel split

    readonly property real cut: Math.round(split.position * width)

    implicitHeight: 68

    Repeater {
        model: picture.split.marks

        Label {
            id: mark

            required property var modelData
            required property int index

            readonly property bool isEnd: modelData.position === 0 || modelData.position === 1
            readonly property bool isBesideNow: x + width + Theme.space8 < now.x || x > now.x + now.width + Theme.space8
            readonly property bool isBesideEnds: x > width + Theme.space8 && x + 2 * width + Theme.space8 < picture.width

            x: Math.max(0, Math.min(picture.width - width, Math.round(modelData.position * picture.width - width / 2)))
            width: implicitWidth
            visible: isBesideNow && (isEnd || isBesideEnds)
            type: Label.Type.Caption
            text: modelData.text
            color: Theme.ink3
            Accessible.ignored: true
        }
    }
    Repeater {
        model: picture.split.halves

        SplitBlock {
            x: index === 0 ? 0 : picture.cut + 4
            y: 20
            width: Math.max(0, index === 0 ? picture.cut - 4 : picture.width - picture.cut - 4)
            height: 44
        }
    }
    Label {
        id: now
        x: Math.max(0, Math.min(picture.width - width, picture.cut - width / 2))
        width: implicitWidth
        type: Label.Type.Caption
        font.weight: Font.DemiBold
        text: picture.split.momentText
        color: Theme.accent
        Accessible.ignored: true
    }
    Rectangle {
        x: picture.cut - 1
        y: 16
        width: 2
        height: parent.height - y
        radius: 1
        color: Theme.accent
    }
    Rectangle {
        x: picture.cut - 7
        y: 30
        width: 14
        height: 24
        radius: 7
        color: Theme.raised
        Accessible.role: Accessible.Slider
        Accessible.name: qsTr("Split at %1").arg(picture.split.momentText)
        Accessible.onIncreaseAction: picture.split.nudgeMoment(1)
        Accessible.onDecreaseAction: picture.split.nudgeMoment(-1)

        Rectangle {
            anchors.fill: parent
            anchors.margins: 2
            radius: 5
            color: Theme.accentFill
        }
    }
    MouseArea {
        anchors.fill: parent
        preventStealing: true
        cursorShape: Qt.SplitHCursor
        onPressed: mouse => picture.split.moveMoment(mouse.x / picture.width)
        onPositionChanged: mouse => picture.split.moveMoment(mouse.x / picture.width)
    }
}
