// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A choice of few, side by side: Segments { texts: [qsTr("Week"), qsTr("Month")]; onChosen: index => … }. Left and Right
// choose; it is one stop of Tab.
Item {
    id: control

    property var texts: []
    property int currentIndex: 0
    property bool ringed: activeFocus

    signal chosen(int index)

    function choose(index: int) {
        if (index < 0 || index >= texts.length || index === currentIndex)
            return;
        currentIndex = index;
        chosen(index);
    }

    implicitWidth: row.implicitWidth + 4
    implicitHeight: 28
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Keys.onLeftPressed: control.choose(control.currentIndex - 1)
    Keys.onRightPressed: control.choose(control.currentIndex + 1)

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusControl
        color: Theme.sunken

        FocusRing {
            shown: control.ringed
        }
    }
    Row {
        id: row

        x: 2
        y: 2

        Repeater {
            model: control.texts

            T.RadioButton {
                id: segment

                required property int index
                required property string modelData
                readonly property bool current: index === control.currentIndex

                implicitWidth: Math.ceil(implicitContentWidth) + 24
                implicitHeight: 24
                focusPolicy: Qt.NoFocus
                hoverEnabled: true
                text: modelData
                checked: current
                indicator: null
                Accessible.role: Accessible.RadioButton
                Accessible.name: text
                Accessible.checkable: true
                Accessible.checked: current
                Accessible.onPressAction: segment.clicked()
                onClicked: control.choose(index)

                contentItem: Label {
                    horizontalAlignment: Text.AlignHCenter
                    type: Label.Type.Small
                    text: segment.text
                    font.weight: segment.current ? Font.DemiBold : Font.Medium
                    color: segment.current || segment.hovered ? Theme.ink1 : Theme.ink2
                    Accessible.ignored: true
                }
                background: Item {
                    Rectangle {
                        anchors.fill: parent
                        anchors.topMargin: 1
                        anchors.bottomMargin: -1
                        visible: segment.current
                        radius: Theme.radiusBlock
                        color: Theme.press
                    }
                    Rectangle {
                        anchors.fill: parent
                        visible: segment.current
                        radius: Theme.radiusBlock
                        color: Theme.lifted
                    }
                }
            }
        }
    }
}
