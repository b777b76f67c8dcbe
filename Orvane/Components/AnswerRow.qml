// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// One answer to a question, beside what it does. The answers stand in a column, where Up and Down go from one to the next;
// the harmless one gets the focus first. A click, Return, Space or its key takes it; the column's owner hears the key.
T.AbstractButton {
    id: control

    property string effect
    property string keys
    property int titleWidth: 168
    property bool lit: hovered
    property bool ringed: activeFocus

    function press() {
        if (enabled)
            clicked();
    }
    function step(forward: bool) {
        const next = nextItemInFocusChain(forward) as AnswerRow;
        if (next && next.parent === parent)
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
    }

    implicitWidth: 480
    implicitHeight: Math.max(36, says.implicitHeight + 8)
    leftPadding: Theme.space12 + 1
    rightPadding: Theme.space8 + 1
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: effect
    Accessible.onPressAction: control.press()
    Keys.onReturnPressed: control.press()
    Keys.onEnterPressed: control.press()
    Keys.onUpPressed: control.step(false)
    Keys.onDownPressed: control.step(true)

    Item {
        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        anchors.rightMargin: control.rightPadding
        Label {
            id: answer

            anchors.verticalCenter: parent.verticalCenter
            width: Math.max(control.titleWidth, implicitWidth)
            text: control.text
            font.weight: Font.Medium
            Accessible.ignored: true
        }
        Label {
            id: says

            anchors.left: answer.right
            anchors.leftMargin: Theme.space16
            anchors.right: key.visible ? key.left : parent.right
            anchors.rightMargin: key.visible ? Theme.space16 : 0
            anchors.verticalCenter: parent.verticalCenter
            type: Label.Type.Small
            wrapMode: Text.Wrap
            color: Theme.ink2
            text: control.effect
            Accessible.ignored: true
        }
        KeyCap {
            id: key

            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: control.keys !== ""
            keys: control.keys
        }
    }
    background: Rectangle {
        radius: Theme.radiusCard
        color: control.ringed ? Theme.accentTint : Theme.control
        border.width: control.ringed ? 2 : 1
        border.color: control.ringed ? Theme.accent : Theme.line2

        Wash {
            radius: Theme.radiusCard
            lit: control.lit && !control.ringed
            pressed: control.down
        }
    }
}
