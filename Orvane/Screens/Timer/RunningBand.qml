// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What runs, since when, for how long, and the way to stop it.
Item {
    id: band

    required property TimerModel timer
    required property bool isWide

    height: (isWide ? 72 : 64) + (needs.visible ? 24 : 0)
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Running timer")

    Item {
        id: line
        x: Theme.space24
        width: parent.width - 2 * Theme.space24
        height: band.isWide ? 72 : 64

        Rectangle {
            id: live
            anchors.verticalCenter: parent.verticalCenter
            width: 14
            height: 14
            radius: 7
            x: -3
            color: Theme.accentTint

            Rectangle {
                anchors.centerIn: parent
                width: 8
                height: 8
                radius: 4
                color: Theme.accent
            }
        }
        TapHandler {
            onTapped: band.timer.editRunning()
        }
        Label {
            id: description
            type: Label.Type.Title
            anchors.left: live.right
            anchors.leftMargin: 5
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, Math.max(80, figures.x - x - (pill.visible ? pill.width + 12 : 0) - (bill.visible ? 28 : 0) - 12))
            saidByPeople: true
            text: band.timer.description === "" ? qsTr("No description") : band.timer.description
            Accessible.role: Accessible.Button
            Accessible.description: qsTr("Edit the running timer")
            Accessible.onPressAction: band.timer.editRunning()
            color: band.timer.description === "" ? Theme.ink2 : Theme.ink1
        }
        Pill {
            id: pill
            anchors.left: description.right
            anchors.leftMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            visible: band.timer.project !== ""

            ProjectChip {
                anchors.verticalCenter: parent.verticalCenter
                project: band.timer.project
                task: band.width < 620 ? "" : band.timer.task
                color: Theme.projectColor(band.timer.projectColor)
                type: Label.Type.Small
            }
        }
        Icon {
            id: bill
            anchors.left: pill.visible ? pill.right : description.right
            anchors.leftMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            visible: band.timer.isBillable
            name: "bill"
            color: Theme.ink3
        }
        Row {
            id: figures
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            spacing: 20

            Label {
                anchors.verticalCenter: parent.verticalCenter
                visible: band.width >= 620
                text: band.timer.since
                color: Theme.ink2
            }
            Label {
                id: elapsed
                anchors.verticalCenter: parent.verticalCenter
                type: band.isWide ? Label.Type.Elapsed : Label.Type.Figures
                text: band.timer.elapsed
                // As wide whatever the last figure is, so that what stands beside it is not laid out anew each second.
                width: Math.ceil(noughts.advanceWidth) + 1
                elide: Text.ElideNone
                Accessible.name: qsTr("Running for %1").arg(text)

                TextMetrics {
                    id: noughts
                    font: elapsed.font
                    text: band.timer.elapsed.replace(/[0-9]/g, "0")
                }
            }
            PrimaryButton {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Stop")
                iconName: "stop"
                keys: band.width < 560 ? "" : band.timer.keys.caps[KeyTable.StartOrStop]
                tall: true
                onClicked: band.timer.stop()
            }
        }
    }
    Label {
        id: needs
        x: Theme.space24 + 16
        y: line.height - 10
        width: parent.width - 2 * Theme.space24 - 16
        visible: band.timer.needs !== ""
        text: band.timer.needs
        color: Theme.danger
        type: Label.Type.Small
        Accessible.role: Accessible.AlertMessage
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: 1
        color: Theme.line
    }
}
