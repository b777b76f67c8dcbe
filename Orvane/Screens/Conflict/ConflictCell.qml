// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane.Components

// One side of a field in which two devices differ; what only this side says is bold. Which is chosen is for who holds the
// two to say. No control: such a button would tell assistive programs that it is a push button.
Rectangle {
    id: cell

    required property string text
    // The words before those that only this side has, these, and those behind them; and all as one.
    required property var marked
    required property string said
    required property bool chosen

    signal clicked

    implicitHeight: 40
    radius: Theme.radiusCard
    color: chosen ? Theme.accentTint : "transparent"
    border.width: chosen ? 2 : 1
    border.color: chosen ? Theme.accent : Theme.line2
    activeFocusOnTab: true
    Accessible.role: Accessible.RadioButton
    Accessible.name: text
    Accessible.description: said
    Accessible.focusable: true
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.onPressAction: cell.clicked()
    Keys.onSpacePressed: cell.clicked()

    HoverHandler {
        id: pointer
    }
    TapHandler {
        id: tap
        onTapped: {
            cell.forceActiveFocus(Qt.MouseFocusReason);
            cell.clicked();
        }
    }
    Wash {
        radius: Theme.radiusCard
        lit: pointer.hovered && !cell.chosen
        pressed: tap.pressed
    }
    FocusRing {
        around: Theme.radiusCard
        shown: cell.activeFocus
    }
    Item {
        anchors.fill: parent

        Rectangle {
            x: 13
            anchors.verticalCenter: parent.verticalCenter
            width: 16
            height: 16
            radius: 8
            color: cell.chosen ? Theme.accent : "transparent"
            border.width: cell.chosen ? 0 : 1.5
            border.color: Theme.field

            Rectangle {
                anchors.centerIn: parent
                width: 6
                height: 6
                radius: 3
                visible: cell.chosen
                color: Theme.content
            }
        }
        Row {
            id: runs
            x: 39
            width: parent.width - x - 13
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4

            Repeater {
                model: cell.marked

                Label {
                    required property string modelData
                    required property int index

                    width: Math.min(implicitWidth, Math.max(0, runs.width - x))
                    visible: modelData !== ""
                    saidByPeople: true
                    text: modelData
                    font.weight: index === 1 ? Font.DemiBold : Font.Normal
                    color: cell.chosen ? Theme.ink1 : Theme.ink2
                    Accessible.ignored: true
                }
            }
        }
    }
}
