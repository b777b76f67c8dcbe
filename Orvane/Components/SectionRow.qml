// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A section of the window in its sidebar, with how much there waits.
T.TabButton {
    id: control

    property string iconName
    property int count: 0
    property bool current: false
    property bool lit: hovered
    property bool ringed: visualFocus

    function press() {
        if (enabled)
            clicked();
    }

    implicitWidth: 192
    implicitHeight: 32
    leftPadding: 10
    rightPadding: 10
    checkable: false
    autoExclusive: false
    hoverEnabled: true
    Accessible.role: Accessible.PageTab
    Accessible.name: count > 0 ? qsTr("%1, %2 waiting").arg(text).arg(count) : text
    Accessible.selected: current
    Accessible.onPressAction: control.press()
    Keys.onReturnPressed: control.press()
    Keys.onEnterPressed: control.press()

    Item {
        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        anchors.rightMargin: control.rightPadding
        Icon {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            visible: control.iconName !== ""
            name: control.iconName
            color: {
                if (!control.enabled)
                    return Theme.ink3;
                return control.current ? Theme.accent : control.lit ? Theme.ink1 : Theme.ink2;
            }
        }
        Label {
            anchors.left: icon.visible ? icon.right : parent.left
            anchors.leftMargin: icon.visible ? 10 : 0
            anchors.right: badge.visible ? badge.left : parent.right
            anchors.rightMargin: badge.visible ? Theme.space8 : 0
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            font.weight: !control.enabled ? Font.Normal : control.current ? Font.DemiBold : Font.Medium
            color: !control.enabled ? Theme.ink3 : control.current || control.lit ? Theme.ink1 : Theme.ink2
            Accessible.ignored: true
        }
        Badge {
            id: badge

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            count: control.count
            current: control.current
        }
    }
    background: Rectangle {
        radius: Theme.radiusControl
        color: control.current ? Theme.accentTint : "transparent"

        Wash {
            lit: control.lit && !control.current && control.enabled
            pressed: control.down
        }
        FocusRing {
            shown: control.ringed
        }
    }
}
