// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// What is chosen of many, and opens the list of them. In an editor it is as high as a field and has a field's edge
// (`inEditor`). Something else than a text, such as a ProjectChip, stands in it as a child.
T.Button {
    id: control

    default property Item face: null
    property string detail
    property bool inEditor: false
    property bool lit: hovered
    property bool ringed: visualFocus
    property bool open: false
    readonly property real needed: face ? face.implicitWidth : label.implicitWidth + (more.visible ? Theme.space8 + more.implicitWidth : 0)

    function press() {
        if (enabled)
            clicked();
    }

    implicitWidth: Math.ceil(needed) + 11 + Theme.space8 + arrows.width + 9
    implicitHeight: inEditor ? 32 : 28
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: detail
    Accessible.onPressAction: control.press()
    Keys.onReturnPressed: control.press()
    Keys.onEnterPressed: control.press()
    Keys.onDownPressed: control.press()

    background: Rectangle {
        radius: Theme.radiusControl
        color: !control.enabled ? Theme.chrome : control.inEditor ? Theme.content : Theme.control
        border.width: control.open ? 2 : 1
        border.color: {
            if (control.open)
                return Theme.accent;
            return !control.inEditor || !control.enabled ? Theme.line2 : control.lit ? Theme.ink3 : Theme.field;
        }

        Wash {
            lit: control.lit && control.enabled && !control.inEditor
            pressed: control.down
        }
        FocusRing {
            shown: control.ringed
        }
    }

    Item {
        id: slot

        children: control.face ? [control.face] : []
        x: 11
        width: arrows.x - x - Theme.space8
        height: parent.height
    }
    Label {
        id: label

        x: 11
        anchors.verticalCenter: parent.verticalCenter
        width: Math.min(implicitWidth, slot.width)
        visible: !control.face
        text: control.text
        color: control.enabled ? Theme.ink1 : Theme.ink3
        Accessible.ignored: true
    }
    Label {
        id: more

        anchors.left: label.right
        anchors.leftMargin: Theme.space8
        anchors.right: arrows.left
        anchors.rightMargin: Theme.space8
        anchors.verticalCenter: parent.verticalCenter
        visible: label.visible && text !== ""
        text: control.detail
        color: Theme.ink3
        Accessible.ignored: true
    }
    Icon {
        id: arrows

        anchors.right: parent.right
        anchors.rightMargin: 9
        anchors.verticalCenter: parent.verticalCenter
        name: "updown"
        color: Theme.ink3
    }
}
