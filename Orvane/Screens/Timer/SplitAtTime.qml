// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// An entry divided in time: where, and what either half is.
FocusScope {
    id: pane

    required property TimerModel timer

    readonly property SplitModel split: timer.split

    function take() {
        moment.forceActiveFocus(Qt.OtherFocusReason);
        moment.selectAll();
    }

    implicitHeight: halves.y + halves.height
    focus: visible
    Keys.onUpPressed: event => pane.split.nudgeMoment(event.modifiers & Qt.ShiftModifier ? 15 : 1)
    Keys.onDownPressed: event => pane.split.nudgeMoment(event.modifiers & Qt.ShiftModifier ? -15 : -1)

    SplitPicture {
        id: picture
        width: parent.width
        split: pane.split
    }
    Row {
        id: where
        anchors.top: picture.bottom
        anchors.topMargin: Theme.space8
        spacing: Theme.space8

        Label {
            height: 32
            text: qsTr("Split at")
            color: Theme.ink2
            Accessible.ignored: true
        }
        ActionButton {
            width: 28
            leftPadding: 0
            rightPadding: 0
            tall: true
            autoRepeat: true
            focusPolicy: Qt.NoFocus
            iconName: "left"
            ink: Theme.ink2
            Accessible.name: qsTr("A minute earlier")
            onClicked: pane.split.nudgeMoment(-1)
        }
        TimeEntry {
            id: moment
            width: 72
            focus: true
            Accessible.name: qsTr("Split at")
            Accessible.description: pane.split.isMomentWrong ? pane.split.problem : ""
            leftPadding: 4
            rightPadding: 4
            text: pane.split.moment
            onTextEdited: pane.split.moment = text
            onSettled: pane.split.settleMoment()
            onNudged: minutes => pane.split.nudgeMoment(minutes)
            onAccepted: pane.split.save()

            // There is no room in it for the icon, which stands before the sentence.
            Rectangle {
                anchors.fill: parent
                visible: pane.split.isMomentWrong
                radius: Theme.radiusControl
                color: "transparent"
                border.width: 2
                border.color: Theme.danger
            }
        }
        ActionButton {
            width: 28
            leftPadding: 0
            rightPadding: 0
            tall: true
            autoRepeat: true
            focusPolicy: Qt.NoFocus
            iconName: "right"
            ink: Theme.ink2
            Accessible.name: qsTr("A minute later")
            onClicked: pane.split.nudgeMoment(1)
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: pane.split.isMomentWrong
            name: "warn"
            color: Theme.danger
        }
        Label {
            width: pane.width - x
            height: 32
            leftPadding: pane.split.isMomentWrong ? 0 : Theme.space8
            type: Label.Type.Small
            text: pane.split.isMomentWrong ? pane.split.problem : qsTr("↑ ↓ a minute, with ⇧ by 15.")
            color: pane.split.isMomentWrong ? Theme.danger : Theme.ink2
        }
    }
    Row {
        id: halves
        anchors.top: where.bottom
        anchors.topMargin: Theme.space12
        spacing: Theme.space12

        Repeater {
            model: pane.split.halves

            SplitHalf {
                timer: pane.timer
                width: (pane.width - halves.spacing) / 2
            }
        }
    }
}
