// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// One of a few places to choose from: an icon, its name and what it is; below that, when it is chosen, what it wants to
// know. The cells of one choice are children of one item; the arrows go from one to the next and choose it.
T.RadioButton {
    id: control

    required property string iconName
    required property string says
    default property alias wants: below.data
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
        const next = nextItemInFocusChain(forward) as PlaceCell;
        if (next && next.parent === parent) {
            next.forceActiveFocus(forward ? Qt.TabFocusReason : Qt.BacktabFocusReason);
            next.press();
        }
    }

    implicitWidth: 280
    implicitHeight: face.implicitHeight + 2 * 13
    hoverEnabled: true
    Accessible.role: Accessible.RadioButton
    Accessible.name: text
    Accessible.description: says
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: control.press()
    Keys.onReturnPressed: control.press()
    Keys.onEnterPressed: control.press()
    Keys.onDownPressed: control.step(true)
    Keys.onUpPressed: control.step(false)

    Icon {
        x: 13
        y: 15
        name: control.iconName
        color: control.checked ? Theme.accent : Theme.ink3
    }
    Column {
        id: face

        x: 41
        y: 13
        width: parent.width - x - 41

        Label {
            width: parent.width
            text: control.text
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
        Label {
            type: Label.Type.Small
            width: parent.width
            text: control.says
            color: Theme.ink2
            wrapMode: Text.Wrap
            Accessible.ignored: true
        }
        Item {
            id: below

            visible: control.checked
            width: parent.width
            height: visible ? childrenRect.y + childrenRect.height : 0
        }
    }
    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 13
        y: 15
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
    background: Rectangle {
        radius: Theme.radiusCard
        color: Theme.content
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
