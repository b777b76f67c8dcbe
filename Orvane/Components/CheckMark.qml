// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// Whether something is among what is chosen. Its text is its name; it is shown where the row does not say it already.
T.CheckBox {
    id: control

    property bool lit: hovered
    property bool ringed: visualFocus

    function press() {
        if (!enabled)
            return;
        toggle();
        toggled();
        clicked();
    }

    implicitWidth: 16
    implicitHeight: 16
    hoverEnabled: true
    Accessible.role: Accessible.CheckBox
    Accessible.name: text
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: control.press()
    Accessible.onToggleAction: control.press()
    Keys.onReturnPressed: control.press()
    Keys.onEnterPressed: control.press()

    indicator: Rectangle {
        implicitWidth: 16
        implicitHeight: 16
        radius: Theme.radiusBlock
        opacity: control.enabled ? 1 : 0.45
        color: control.checked ? Theme.accentFill : Theme.content
        border.width: control.checked ? 0 : 1.5
        border.color: control.lit ? Theme.ink3 : Theme.field

        Icon {
            anchors.centerIn: parent
            visible: control.checked
            name: "check"
            size: 12
            color: Theme.inkOnAccent
        }
        Wash {
            radius: Theme.radiusBlock
            pressed: control.down
        }
        FocusRing {
            around: Theme.radiusBlock
            shown: control.ringed
        }
    }
}
