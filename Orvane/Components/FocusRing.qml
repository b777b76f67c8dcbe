// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// The ring around what has the keyboard: two pixels of accent, two pixels off; rows have it inside. Fills what it rings.
Rectangle {
    id: ring

    property bool shown: false
    property bool inside: false
    property int around: Theme.radiusControl

    anchors.fill: parent
    anchors.margins: inside ? 0 : -4
    visible: shown
    radius: inside ? around : around + 4
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
}
