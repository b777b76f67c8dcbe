// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// One side of a field in which two devices differ; what only this side says is bold. Which is chosen is for who holds the
// two to say.
T.AbstractButton {
    id: cell

    // The words before those that only this side has, these, and those behind them; and all as one.
    required property var marked
    required property string said
    required property bool chosen

    implicitHeight: 40
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.RadioButton
    Accessible.name: text
    Accessible.description: said
    Accessible.checkable: true
    Accessible.checked: chosen
    Accessible.onPressAction: cell.clicked()

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
    contentItem: null
    background: Rectangle {
        radius: Theme.radiusCard
        color: cell.chosen ? Theme.accentTint : "transparent"
        border.width: cell.chosen ? 2 : 1
        border.color: cell.chosen ? Theme.accent : Theme.line2

        Wash {
            radius: Theme.radiusCard
            lit: cell.hovered && !cell.chosen
            pressed: cell.down
        }
        FocusRing {
            around: Theme.radiusCard
            shown: cell.visualFocus
        }
    }
}
