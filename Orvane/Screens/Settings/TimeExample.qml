// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The running timer and an entry, as the choices make them look.
Rectangle {
    id: example

    required property TimeSettings time

    height: 48 + 36
    radius: Theme.radiusCard
    color: "transparent"
    border.color: Theme.line2

    LiveDot {
        x: 8
        y: 20
        size: 8
    }
    Label {
        x: 24
        height: 48
        width: Math.min(implicitWidth, since.x - x - 8)
        text: qsTr("What runs")
        font.weight: Font.Medium
    }
    Label {
        id: since
        anchors.right: elapsed.left
        anchors.rightMargin: 16
        height: 48
        text: example.time.since
        color: Theme.ink2
    }
    Label {
        id: elapsed
        anchors.right: parent.right
        anchors.rightMargin: 12
        height: 48
        type: Label.Type.Figures
        text: example.time.elapsed
    }
    Rectangle {
        y: 48
        width: parent.width
        height: 1
        color: Theme.line
    }
    Rectangle {
        x: 8
        y: 48 + 8
        width: 3
        height: 20
        radius: 1.5
        color: Theme.blue
    }
    Label {
        x: 24
        y: 48
        height: 36
        width: Math.min(implicitWidth, times.x - x - 8)
        text: qsTr("An entry")
    }
    Label {
        id: times
        anchors.right: parent.right
        anchors.rightMargin: 12 + 72
        y: 48
        height: 36
        text: example.time.times
        color: Theme.ink2
    }
    Label {
        anchors.right: parent.right
        anchors.rightMargin: 12
        y: 48
        height: 36
        text: qsTr("1h 25m")
        font.weight: Font.Medium
    }
}
