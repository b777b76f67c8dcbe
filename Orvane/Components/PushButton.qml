// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// What the three kinds of buttons share: an icon, a text, a key, and a spinner while what they do is under way.
T.Button {
    id: control

    property string iconName
    property string keys
    property bool busy: false
    property bool tall: false
    property color ink: Theme.ink1
    property color keyInk: Theme.ink2
    property color keyEdge: Theme.line2
    property int weight: Font.Medium
    // What is drawn as under the pointer and as having the keyboard.
    property bool lit: hovered
    property bool ringed: visualFocus
    readonly property bool faded: !enabled && !busy

    function press() {
        if (enabled)
            clicked();
    }

    implicitWidth: Math.ceil(face.implicitWidth) + leftPadding + rightPadding
    implicitHeight: tall ? 32 : 28
    leftPadding: Theme.space12 + 1
    rightPadding: Theme.space12 + 1
    enabled: !busy
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.onPressAction: control.press()
    Keys.onReturnPressed: control.press()
    Keys.onEnterPressed: control.press()

    Item {
        id: face

        anchors.fill: parent
        anchors.leftMargin: control.leftPadding
        anchors.rightMargin: control.rightPadding
        implicitWidth: row.implicitWidth

        Row {
            id: row

            anchors.centerIn: parent
            spacing: Theme.space8

            Spinner {
                anchors.verticalCenter: parent.verticalCenter
                visible: control.busy
                color: control.ink
            }
            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: control.iconName !== "" && !control.busy
                name: control.iconName
                color: control.faded ? Theme.ink3 : control.ink
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                visible: text !== ""
                text: control.text
                color: control.faded ? Theme.ink3 : control.ink
                font.weight: control.weight
                Accessible.ignored: true
            }
            KeyCap {
                anchors.verticalCenter: parent.verticalCenter
                visible: control.keys !== "" && !control.busy
                keys: control.keys
                color: "transparent"
                ink: control.faded ? Theme.ink3 : control.keyInk
                edge: control.faded ? Theme.line : control.keyEdge
            }
        }
    }
}
