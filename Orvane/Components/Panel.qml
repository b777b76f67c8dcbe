// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A raised surface: cards and menus throw a shadow of level 2, sheets of level 3.
Item {
    id: panel

    default property alias content: surface.data
    property int level: 3
    property int radius: Theme.radiusPanel

    implicitWidth: surface.childrenRect.width
    implicitHeight: surface.childrenRect.height

    Shadow {
        anchors.fill: parent
        level: panel.level
        radius: panel.radius
    }
    Rectangle {
        id: surface

        anchors.fill: parent
        radius: panel.radius
        color: Theme.raised
    }
}
