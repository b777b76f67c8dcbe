// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A page in the list of settings.
T.TabButton {
    id: control

    property bool current: false

    implicitHeight: Math.max(28, implicitContentHeight + 8)
    leftPadding: 10
    rightPadding: 10
    checkable: false
    autoExclusive: false
    hoverEnabled: true
    Accessible.role: Accessible.PageTab
    Accessible.name: text
    Accessible.selected: current
    Accessible.onPressAction: control.clicked()
    Keys.onReturnPressed: control.clicked()
    Keys.onEnterPressed: control.clicked()

    contentItem: Label {
        text: control.text
        wrapMode: Text.Wrap
        font.weight: control.current ? Font.DemiBold : Font.Normal
        color: control.current ? Theme.ink1 : Theme.ink2
        Accessible.ignored: true
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: control.current ? Theme.press : "transparent"

        Wash {
            lit: control.hovered && !control.current
            pressed: control.down
        }
        FocusRing {
            shown: control.visualFocus
        }
    }
}
