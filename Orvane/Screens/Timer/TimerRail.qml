// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Beside the list where there is room: what today and the week come to.
Rectangle {
    id: rail

    required property TimerModel timer

    color: Theme.chrome
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Totals")

    Rectangle {
        width: 1
        height: parent.height
        color: Theme.line
    }
    Item {
        x: 20
        width: parent.width - 40
        height: 72

        Column {
            anchors.verticalCenter: parent.verticalCenter

            Label {
                type: Label.Type.Small
                text: qsTr("Today")
                color: Theme.ink2
            }
            Label {
                type: Label.Type.Title
                text: rail.timer.todayTotal
            }
        }
        Column {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter

            Label {
                anchors.right: parent.right
                type: Label.Type.Small
                text: qsTr("This week")
                color: Theme.ink2
            }
            Label {
                anchors.right: parent.right
                type: Label.Type.Title
                text: rail.timer.weekTotal
            }
        }
    }
    Rectangle {
        y: 71
        width: parent.width
        height: 1
        color: Theme.line
    }

    RulerOfDay {
        id: ruler
        x: 20
        y: 72 + Theme.space24
        width: parent.width - 40
        height: Math.min(484, Math.max(200, parent.height - y - Theme.space24 - projects.height - Theme.space20))
        ruler: rail.timer.ruler
    }
    Column {
        id: projects
        x: 20
        anchors.top: ruler.bottom
        anchors.topMargin: Theme.space20
        width: parent.width - 40
        spacing: 4

        Repeater {
            model: rail.timer.ruler.projects

            Item {
                id: project
                required property var modelData
                width: projects.width
                height: 20

                Dot {
                    id: dot
                    anchors.verticalCenter: parent.verticalCenter
                    shade: Theme.projectColor(project.modelData.color)
                    empty: project.modelData.color === ""
                }
                Label {
                    anchors.left: dot.right
                    anchors.leftMargin: 8
                    anchors.right: length.left
                    anchors.rightMargin: 8
                    anchors.verticalCenter: parent.verticalCenter
                    type: Label.Type.Small
                    saidByPeople: true
                    text: project.modelData.name
                }
                Label {
                    id: length
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    type: Label.Type.Small
                    text: project.modelData.length
                    font.weight: Font.Medium
                }
            }
        }
    }
}
