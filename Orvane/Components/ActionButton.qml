// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// An action with an edge. One that cannot be taken back is `dangerous`.
PushButton {
    id: control

    property bool dangerous: false

    ink: dangerous ? Theme.danger : Theme.ink1

    background: Rectangle {
        radius: Theme.radiusControl
        color: control.faded ? "transparent" : Theme.control
        border.width: 1
        border.color: control.faded ? Theme.line : Theme.line2

        Wash {
            lit: control.lit && !control.faded
            pressed: control.down
        }
        FocusRing {
            shown: control.ringed
        }
    }
}
