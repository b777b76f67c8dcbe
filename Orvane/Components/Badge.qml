// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// How many there are. Shows nothing for none.
Rectangle {
    id: badge

    property int count: 0
    property bool current: false

    implicitWidth: Math.max(20, Math.ceil(number.implicitWidth) + 12)
    implicitHeight: 16
    visible: count > 0
    radius: 8
    color: current ? Theme.accentFill : Theme.dark ? Theme.raised : Theme.sunken

    Label {
        id: number

        anchors.centerIn: parent
        type: Label.Type.Caption
        font.weight: Font.DemiBold
        color: badge.current ? Theme.inkOnAccent : Theme.ink2
        text: badge.count
        Accessible.ignored: true
    }
}
