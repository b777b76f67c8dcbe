// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// The colour of a project: one stop of Tab, Left and Right choose. One that is none of ours stands at the end.
Item {
    id: choice

    property var colors: []
    property string color

    readonly property var all: color === "" || colors.some(each => each.toLowerCase() === color.toLowerCase()) ? colors : [...colors, color]
    readonly property int currentIndex: all.findIndex(each => each.toLowerCase() === color.toLowerCase())
    readonly property var names: [qsTr("Blue"), qsTr("Orange"), qsTr("Violet"), qsTr("Leaf"), qsTr("Rose"), qsTr("Ochre"), qsTr("Sky"), qsTr("Plum"), qsTr("Brick"), qsTr("Slate"), qsTr("Another colour")]

    signal chosen(color: string)

    function step(by: int): void {
        const next = currentIndex + by;
        if (next >= 0 && next < all.length)
            chosen(all[next]);
    }

    implicitWidth: row.width
    implicitHeight: 32
    activeFocusOnTab: enabled
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Colour")
    Keys.onLeftPressed: choice.step(-1)
    Keys.onRightPressed: choice.step(1)

    FocusRing {
        shown: choice.activeFocus
        anchors.margins: 0
        around: 16
    }
    Row {
        id: row
        anchors.verticalCenter: parent.verticalCenter
        spacing: 4

        Repeater {
            model: choice.all

            T.RadioButton {
                id: swatch

                required property int index
                required property string modelData
                readonly property bool isCurrent: index === choice.currentIndex

                implicitWidth: 28
                implicitHeight: 28
                focusPolicy: Qt.NoFocus
                autoExclusive: false
                checked: isCurrent
                indicator: null
                Accessible.role: Accessible.RadioButton
                Accessible.name: choice.names[index] ?? qsTr("Another colour")
                Accessible.checkable: true
                Accessible.checked: isCurrent
                Accessible.onPressAction: choice.chosen(modelData)
                onClicked: choice.chosen(modelData)

                background: Rectangle {
                    radius: 14
                    color: "transparent"
                    border.width: swatch.isCurrent ? 2 : 0
                    border.color: Theme.ink1
                }
                contentItem: Item {
                    Rectangle {
                        anchors.centerIn: parent
                        width: 16
                        height: 16
                        radius: 8
                        opacity: choice.enabled ? 1 : 0.45
                        color: Theme.projectColor(swatch.modelData)
                    }
                }
            }
        }
    }
}
