// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// The head of a day whose entries follow.
Item {
    id: root

    required property LineData line

    Label {
        id: day
        x: 16
        y: 12
        text: root.line.title
        font.weight: Font.DemiBold
    }
    Icon {
        id: lock
        anchors.left: day.right
        anchors.leftMargin: 8
        anchors.verticalCenter: day.verticalCenter
        visible: root.line.isLocked
        name: "lock"
        size: 14
    }
    Label {
        anchors.left: lock.visible ? lock.right : day.right
        anchors.leftMargin: 8
        anchors.verticalCenter: day.verticalCenter
        type: Label.Type.Small
        text: root.line.subtitle
        color: root.line.isLocked ? Theme.ink2 : Theme.ink3
    }
    Label {
        anchors.right: parent.right
        anchors.rightMargin: 40
        y: 12
        text: root.line.total
        font.weight: Font.DemiBold
    }
}
