// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// An action of less weight, in text alone; `accented` where it is the one that is offered.
PushButton {
    id: control

    property bool accented: false
    property bool dangerous: false

    ink: accented ? Theme.accent : dangerous ? Theme.danger : Theme.ink2
    weight: faded ? Font.Normal : Font.Medium
    leftPadding: Theme.space8 + 1
    rightPadding: Theme.space8 + 1

    background: Item {
        Wash {
            lit: control.lit && !control.faded
            pressed: control.down
        }
        FocusRing {
            shown: control.ringed
        }
    }
}
