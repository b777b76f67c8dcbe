// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A switch. Its text is what it is called, and stands beside it as a label of its own.
T.Switch {
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

    implicitWidth: 32
    implicitHeight: 18
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
        readonly property color ground: control.checked ? Theme.accentFill : Theme.field

        implicitWidth: 32
        implicitHeight: 18
        radius: 9
        opacity: control.enabled ? 1 : 0.45
        color: control.down ? Qt.darker(ground, 1.1) : control.lit && control.enabled ? Qt.lighter(ground, 1.08) : ground

        Rectangle {
            x: control.checked ? 16 : 2
            y: 2
            width: 14
            height: 14
            radius: 7
            color: "#FFFFFF"

            Behavior on x {
                enabled: Theme.hoverTime > 0
                NumberAnimation {
                    duration: Theme.hoverTime
                    easing.type: Easing.OutQuad
                }
            }
        }
        FocusRing {
            around: 9
            shown: control.ringed
        }
    }
}
