// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// One command of a menu, with its key.
T.MenuItem {
    id: control

    property string iconName
    property string keys
    property bool dangerous: false
    property bool lit: highlighted
    readonly property color ink: {
        if (!enabled)
            return Theme.ink3;
        return lit ? Theme.inkOnAccent : dangerous ? Theme.danger : Theme.ink1;
    }

    implicitWidth: Math.ceil(face.implicitWidth) + leftPadding + rightPadding
    implicitHeight: visible ? 28 : 0
    leftPadding: 10
    rightPadding: 10
    hoverEnabled: true
    Accessible.role: Accessible.MenuItem
    Accessible.name: text
    Accessible.checkable: checkable
    Accessible.checked: checked
    Accessible.onPressAction: if (control.enabled)
        control.triggered()

    Item {
        id: face

        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        anchors.rightMargin: control.rightPadding
        implicitWidth: (icon.visible ? icon.width + 10 : 0) + label.implicitWidth + (key.visible ? key.implicitWidth + 24 : 0)

        Icon {
            id: icon

            anchors.verticalCenter: parent.verticalCenter
            visible: name !== ""
            name: control.checkable && control.checked ? "check" : control.iconName
            color: control.ink
        }
        Label {
            id: label

            anchors.left: icon.visible ? icon.right : parent.left
            anchors.leftMargin: icon.visible ? 10 : control.checkable ? 26 : 0
            anchors.right: key.visible ? key.left : parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: control.text
            color: control.ink
            Accessible.ignored: true
        }
        Label {
            id: key

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            type: Label.Type.Small
            text: KeyNames.text(control.keys)
            color: control.ink
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: 5
        color: control.lit && control.enabled ? Theme.accentFill : "transparent"

        Wash {
            radius: 5
            pressed: control.down && control.enabled
            pressedColor: Theme.hoverOnAccent
        }
    }
}
