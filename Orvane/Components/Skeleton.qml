// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// Stands still in the place of a text that is being loaded.
Rectangle {
    implicitWidth: 120
    implicitHeight: 10
    radius: Theme.radiusBlock
    color: Theme.press
    Accessible.ignored: true
}
