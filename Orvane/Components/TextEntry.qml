// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A field for one line of text. What is wrong with it stands in `error`, below it. Its accessible name is the hint in it
// unless one is given.
T.TextField {
    id: control

    property string error
    property string iconName
    property string keys
    property bool busy: false
    property bool tall: false
    property bool lit: hovered
    property bool typing: activeFocus
    // What is wrong is said elsewhere.
    property bool wrong: false
    readonly property bool refused: error !== "" || wrong
    readonly property int below: error !== "" ? sentence.implicitHeight + Theme.space4 : 0

    implicitWidth: 200
    implicitHeight: (tall ? 40 : 32) + below
    leftPadding: iconName !== "" ? 35 : tall ? Theme.space16 + 1 : 11
    rightPadding: trailing.implicitWidth > 0 ? trailing.implicitWidth + 2 * 11 : 11
    bottomPadding: below
    bottomInset: below
    verticalAlignment: TextInput.AlignVCenter
    hoverEnabled: true
    selectByMouse: true
    color: enabled ? Theme.ink1 : Theme.ink3
    selectionColor: Theme.accentLine
    selectedTextColor: Theme.ink1
    placeholderTextColor: Theme.ink3
    font.family: Theme.family
    font.pixelSize: Theme.t13
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholderText
    Accessible.description: error

    cursorDelegate: Rectangle {
        width: 1.5
        visible: control.cursorVisible
        color: Theme.accent
    }

    background: Item {
        Rectangle {
            anchors.fill: parent
            anchors.margins: -2
            radius: Theme.radiusControl + 2
            visible: control.typing && !control.refused
            color: Theme.accentTint
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusControl
            color: control.enabled ? Theme.content : Theme.chrome
            border.width: control.refused || control.typing ? 2 : 1
            border.color: {
                if (control.refused)
                    return Theme.danger;
                if (control.typing)
                    return Theme.accent;
                return !control.enabled ? Theme.line2 : control.lit ? Theme.ink3 : Theme.field;
            }
        }
    }

    Icon {
        x: 11
        y: Math.round((control.height - control.below - height) / 2)
        visible: control.iconName !== ""
        name: control.iconName
        color: Theme.ink3
    }
    Label {
        x: control.leftPadding
        width: control.width - control.leftPadding - control.rightPadding
        height: control.height - control.below
        visible: control.length === 0 && control.preeditText === ""
        text: control.placeholderText
        color: control.placeholderTextColor
        Accessible.ignored: true
    }
    Row {
        id: trailing

        anchors.right: parent.right
        anchors.rightMargin: 11
        height: control.height - control.below
        spacing: Theme.space8

        Spinner {
            anchors.verticalCenter: parent.verticalCenter
            visible: control.busy
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: control.refused && !control.busy
            name: "warn"
            color: Theme.danger
        }
        KeyCap {
            anchors.verticalCenter: parent.verticalCenter
            visible: control.keys !== "" && !control.refused && !control.busy
            keys: control.keys
        }
    }
    Label {
        id: sentence

        anchors.bottom: parent.bottom
        width: parent.width
        visible: control.error !== ""
        type: Label.Type.Small
        wrapMode: Text.Wrap
        color: Theme.danger
        text: control.error
        Accessible.ignored: true
    }
}
