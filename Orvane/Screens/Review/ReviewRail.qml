// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Beside the offers where there is room: what the day comes to, and what of it is settled.
Rectangle {
    id: rail

    required property ReviewModel review
    required property TimerModel timer

    readonly property int inAll: review.waiting + review.settledToday

    color: Theme.chrome
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("The day so far")

    Rectangle {
        width: 1
        height: parent.height
        color: Theme.line
    }
    Label {
        x: 20
        height: 56
        text: qsTr("The day so far")
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    Rectangle {
        y: 55
        width: parent.width
        height: 1
        color: Theme.line
    }
    Column {
        x: 20
        y: 56 + Theme.space16
        width: parent.width - 40
        spacing: Theme.space16

        Item {
            width: parent.width
            height: 24

            Label {
                height: parent.height
                text: qsTr("Tracked")
                color: Theme.ink2
            }
            Label {
                anchors.right: parent.right
                height: parent.height
                font.weight: Font.DemiBold
                text: rail.timer.todayTotal
            }
        }
        Column {
            width: parent.width
            visible: rail.inAll > 0
            spacing: 4

            Label {
                type: Label.Type.Small
                font.weight: Font.DemiBold
                text: qsTr("%1 to settle").arg(rail.review.waiting)
                color: Theme.ink2
            }
            Rectangle {
                width: parent.width
                height: 6
                radius: 3
                color: Theme.sunken
                Accessible.ignored: true

                Rectangle {
                    width: rail.inAll > 0 ? parent.width * rail.review.settledToday / rail.inAll : 0
                    height: parent.height
                    radius: 3
                    color: Theme.accent
                }
            }
            Label {
                type: Label.Type.Small
                text: qsTr("%1 of %2 settled today").arg(rail.review.settledToday).arg(rail.inAll)
                color: Theme.ink2
            }
        }
        Flickable {
            width: parent.width
            height: Math.min(contentHeight, rail.height - y - parent.y - 64)
            contentHeight: settled.height
            clip: true
            boundsBehavior: Flickable.StopAtBounds

            SettledPane {
                id: settled
                width: parent.width
                review: rail.review
            }
        }
    }
    Label {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.space16
        x: 20
        width: parent.width - 40
        type: Label.Type.Small
        wrapMode: Text.Wrap
        text: qsTr("Nothing changes until you take a suggestion.")
        color: Theme.ink3
    }
}
