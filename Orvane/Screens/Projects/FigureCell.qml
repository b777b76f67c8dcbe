// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A figure of a table, from the right: how far its end is from the table's.
Label {
    property int end: 0
    property int room: 80
    property int weight: Font.Normal

    x: parent ? parent.width - end - room : 0
    anchors.verticalCenter: parent ? parent.verticalCenter : undefined
    width: room
    horizontalAlignment: Text.AlignRight
    font.weight: text === "–" ? Font.Normal : weight
    color: text === "–" ? Theme.ink3 : weight === Font.Normal ? Theme.ink2 : Theme.ink1
    Accessible.ignored: true
}
