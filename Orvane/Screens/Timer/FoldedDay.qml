// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A day in one line: how its time was shared out, and what it comes to.
Item {
    id: root

    required property LineData line

    Icon {
        x: 0
        anchors.verticalCenter: parent.verticalCenter
        name: "right"
        color: Theme.ink3
    }
    Label {
        id: day
        x: 16
        anchors.verticalCenter: parent.verticalCenter
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
        anchors.verticalCenter: parent.verticalCenter
        type: Label.Type.Small
        text: root.line.subtitle
        color: Theme.ink3
    }
    ShareBar {
        anchors.right: parent.right
        anchors.rightMargin: root.line.columns.projectRight - (root.line.columns.isWide ? 116 : 0)
        anchors.verticalCenter: parent.verticalCenter
        width: root.line.columns.projectWidth + (root.line.columns.isWide ? 116 : 0)
        shares: root.line.sharesOf(root.line.parts)
    }
    Label {
        anchors.right: parent.right
        anchors.rightMargin: 40
        anchors.verticalCenter: parent.verticalCenter
        text: root.line.total
        font.weight: Font.DemiBold
    }
}
