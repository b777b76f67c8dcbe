// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A button of an icon alone. What it does stands in `text`: its accessible name, and the hint beside the pointer.
T.Button {
    id: control

    required property string iconName
    property string keys
    property color ink: Theme.ink2
    property bool lit: hovered
    property bool ringed: visualFocus

    function press() {
        if (!enabled)
            return;
        if (checkable) {
            toggle();
            toggled();
        }
        clicked();
    }

    implicitWidth: 28
    implicitHeight: 28
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: control.press()
    Keys.onReturnPressed: control.press()
    Keys.onEnterPressed: control.press()

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: control.iconName
            color: control.checked ? Theme.accent : control.enabled ? control.ink : Theme.ink3
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: control.checked ? Theme.accentTint : "transparent"

        Wash {
            lit: control.lit && control.enabled
            pressed: control.down
        }
        FocusRing {
            shown: control.ringed
        }
    }

    HoverHint {
        isWanted: control.hovered || control.visualFocus
        text: control.text
        keys: control.keys
    }
}
