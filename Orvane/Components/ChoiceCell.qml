// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// One of several ways, with how it would look at its right end. The cells of one choice are children of one item; the
// arrows go from one to the next and choose it.
T.RadioButton {
    id: control

    property string example
    property bool lit: hovered
    property bool ringed: visualFocus

    function press() {
        if (!enabled)
            return;
        if (!checked) {
            toggle();
            toggled();
        }
        clicked();
    }
    function step(forward: bool) {
        const next = nextItemInFocusChain(forward) as ChoiceCell;
        if (next && next.parent === parent) {
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
            next.press();
        }
    }

    implicitWidth: Math.ceil(face.implicitWidth) + leftPadding + rightPadding
    implicitHeight: 40
    leftPadding: Theme.space12 + 1
    rightPadding: Theme.space12 + 1
    hoverEnabled: true
    Accessible.role: Accessible.RadioButton
    Accessible.name: text
    Accessible.description: example
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: control.press()
    Keys.onReturnPressed: control.press()
    Keys.onEnterPressed: control.press()
    Keys.onRightPressed: control.step(true)
    Keys.onDownPressed: control.step(true)
    Keys.onLeftPressed: control.step(false)
    Keys.onUpPressed: control.step(false)

    Item {
        id: face

        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        anchors.rightMargin: control.rightPadding
        implicitWidth: 26 + label.implicitWidth + (sample.visible ? sample.implicitWidth + Theme.space16 : 0)

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: 16
            height: 16
            radius: 8
            color: control.checked ? Theme.accent : "transparent"
            border.width: control.checked ? 0 : 1.5
            border.color: Theme.field

            Rectangle {
                anchors.centerIn: parent
                width: 6
                height: 6
                radius: 3
                visible: control.checked
                color: Theme.content
            }
        }
        Label {
            id: label

            x: 26
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - x - (sample.visible ? sample.implicitWidth + Theme.space8 : 0)
            text: control.text
            color: !control.enabled ? Theme.ink3 : control.checked ? Theme.ink1 : Theme.ink2
            Accessible.ignored: true
        }
        Label {
            id: sample

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            text: control.example
            font.weight: control.checked ? Font.DemiBold : Font.Normal
            color: !control.enabled ? Theme.ink3 : control.checked ? Theme.ink1 : Theme.ink2
            Accessible.ignored: true
        }
    }
    background: Rectangle {
        radius: Theme.radiusCard
        color: control.checked ? Theme.accentTint : "transparent"
        border.width: control.checked ? 2 : 1
        border.color: control.checked ? Theme.accent : Theme.line2

        Wash {
            radius: Theme.radiusCard
            lit: control.lit && !control.checked && control.enabled
            pressed: control.down
        }
        FocusRing {
            around: Theme.radiusCard
            shown: control.ringed
        }
    }
    indicator: null
}
