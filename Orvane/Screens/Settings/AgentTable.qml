// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The agents that have leave, with what each may do and a way to end it.
Column {
    id: table

    required property SignedInAgents signedIn

    spacing: Theme.space8

    Rectangle {
        width: parent.width
        height: rows.height
        visible: table.signedIn.agents.length > 0
        radius: Theme.radiusCard
        color: "transparent"
        border.color: Theme.line2
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Agents signed in")

        Column {
            id: rows

            width: parent.width

            Repeater {
                model: table.signedIn.agents

                Item {
                    id: row

                    required property int index
                    required property var modelData

                    readonly property bool isWide: width > 560
                    readonly property int rest: width - 41 - button.width - Theme.space8

                    width: rows.width
                    height: 36
                    Accessible.role: Accessible.ListItem
                    Accessible.name: qsTr("%1, %2, %3").arg(modelData.name).arg(modelData.reach).arg(modelData.used)

                    Rectangle {
                        width: parent.width
                        height: 1
                        visible: row.index > 0
                        color: Theme.line
                    }
                    Icon {
                        x: 13
                        anchors.verticalCenter: parent.verticalCenter
                        name: "agent"
                        color: Theme.ink3
                    }
                    Label {
                        x: 41
                        anchors.verticalCenter: parent.verticalCenter
                        width: row.rest * (row.isWide ? 0.24 : 0.45) - Theme.space8
                        saidByPeople: true
                        text: row.modelData.name
                        Accessible.ignored: true
                    }
                    Label {
                        x: 41 + row.rest * (row.isWide ? 0.24 : 0.45)
                        anchors.verticalCenter: parent.verticalCenter
                        width: row.rest * (row.isWide ? 0.34 : 0.55) - Theme.space8
                        saidByPeople: true
                        type: Label.Type.Small
                        color: Theme.ink2
                        text: row.modelData.reach
                        Accessible.ignored: true
                    }
                    Label {
                        x: 41 + row.rest * 0.58
                        anchors.verticalCenter: parent.verticalCenter
                        visible: row.isWide
                        width: row.rest * 0.42 - Theme.space8
                        saidByPeople: true
                        type: Label.Type.Small
                        color: Theme.ink2
                        text: row.modelData.used
                        Accessible.ignored: true
                    }
                    QuietButton {
                        id: button

                        anchors.right: parent.right
                        anchors.rightMargin: Theme.space8
                        anchors.verticalCenter: parent.verticalCenter
                        text: qsTr("Sign Out")
                        Accessible.name: qsTr("Sign out %1").arg(row.modelData.name)
                        onClicked: table.signedIn.signOut(row.modelData.id)
                    }
                }
            }
        }
    }
    Label {
        width: parent.width
        type: Label.Type.Small
        wrapMode: Text.Wrap
        color: Theme.ink2
        text: table.signedIn.problem !== "" ? table.signedIn.problem : table.signedIn.agents.length === 0 ? qsTr("No agent is signed in.") : qsTr("Proposals that wait in Review stay there when an agent is signed out.")
    }
}
