// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What runs, in the sections beside the timer's.
Rectangle {
    id: pill

    required property TimerModel timer
    property bool isShort: false

    implicitWidth: row.implicitWidth + 12 + 4
    implicitHeight: 32
    visible: timer.isRunning
    radius: Theme.radiusCard
    color: Theme.chrome
    border.color: Theme.line
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Running: %1, %2").arg(title.text).arg(timer.elapsed)

    Row {
        id: row
        x: 12
        height: parent.height
        spacing: 10

        LiveDot {
            anchors.verticalCenter: parent.verticalCenter
        }
        Label {
            id: title
            anchors.verticalCenter: parent.verticalCenter
            visible: !pill.isShort
            width: Math.min(implicitWidth, 180)
            saidByPeople: true
            text: pill.timer.description === "" ? qsTr("No description") : pill.timer.description
            font.weight: Font.Medium
            Accessible.ignored: true
        }
        Dot {
            anchors.verticalCenter: parent.verticalCenter
            visible: !pill.isShort
            shade: Theme.projectColor(pill.timer.projectColor)
            empty: pill.timer.projectColor === ""
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            text: pill.timer.elapsed
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
        IconButton {
            id: stop
            anchors.verticalCenter: parent.verticalCenter
            iconName: "stop"
            text: qsTr("Stop")
            keys: pill.timer.keys.caps[KeyTable.StartOrStop]
            width: 24
            height: 24
            ink: Theme.inkOnAccent
            onClicked: pill.timer.stop()

            background: Rectangle {
                radius: Theme.radiusControl
                color: Theme.accentFill

                FocusRing {
                    shown: stop.ringed
                }
            }
        }
    }
}
