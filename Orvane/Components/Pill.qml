// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A fact in a frame, made of what stands in it: Pill { ProjectChip { … } }
Rectangle {
    id: pill

    default property alias content: row.data

    implicitWidth: Math.ceil(row.implicitWidth) + 2 * Theme.space8
    implicitHeight: 24
    radius: Theme.radiusControl
    color: Theme.hover
    border.width: 1
    border.color: Theme.line

    Row {
        id: row

        anchors.centerIn: parent
        spacing: 6
    }
}
