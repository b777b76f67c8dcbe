// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// The main action. A surface has one at most.
PushButton {
    id: control

    ink: Theme.inkOnAccent
    keyInk: Theme.inkOnAccent
    keyEdge: Theme.lineOnAccent
    weight: faded ? Font.Medium : Font.DemiBold

    background: Rectangle {
        radius: Theme.radiusControl
        color: control.faded ? "transparent" : Theme.accentFill
        border.width: control.faded ? 1 : 0
        border.color: Theme.line

        Wash {
            lit: control.lit && !control.faded
            pressed: control.down
            litColor: Theme.hoverOnAccent
            pressedColor: Theme.pressOnAccent
        }
        FocusRing {
            shown: control.ringed
        }
    }
}
