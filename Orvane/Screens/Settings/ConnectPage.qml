// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Which coding agents use this server, and what they may do there.
SettingsSheet {
    id: page
    objectName: "connectPage"

    required property AppModel app
    required property SettingsModel settings

    readonly property AgentConnections agents: settings.agents

    Keys.onEscapePressed: agents.cancel()
    Component.onCompleted: agents.signedIn.setLookedAt(true)
    Component.onDestruction: agents.signedIn.setLookedAt(false)

    SettingGroup {
        title: qsTr("What agents may do")
        titleTop: 8
        about: page.agents.isLocal ? qsTr("They sign in to the server on this computer in your browser, and you can end it here.") : qsTr("They sign in to %1 in your browser, and you can end it here.").arg(page.agents.place)

        Rectangle {
            width: parent.width
            height: rights.height
            radius: Theme.radiusCard
            color: "transparent"
            border.color: Theme.line2
            Accessible.role: Accessible.List
            Accessible.name: qsTr("What agents may do")

            Column {
                id: rights

                width: parent.width

                Repeater {
                    model: [
                        { sign: "clock", says: qsTr("Read your entries, projects and tags") },
                        { sign: "review", says: qsTr("Propose entries and changes; each waits in Review until you accept it") },
                        { sign: "lock", says: qsTr("Nothing else: no logs, no prompts, no folder paths") }
                    ]

                    Item {
                        id: right

                        required property int index
                        required property var modelData

                        width: rights.width
                        height: Math.max(36, says.implicitHeight + 16)

                        Rectangle {
                            width: parent.width
                            height: 1
                            visible: right.index > 0
                            color: Theme.line
                        }
                        Icon {
                            x: 13
                            anchors.verticalCenter: parent.verticalCenter
                            name: right.modelData.sign
                            color: Theme.ink3
                        }
                        Label {
                            id: says

                            x: 41
                            width: parent.width - x - 12
                            anchors.verticalCenter: parent.verticalCenter
                            wrapMode: Text.Wrap
                            text: right.modelData.says
                        }
                    }
                }
            }
        }
    }
    SettingGroup {
        title: page.agents.claudeCode.name
        titleTop: 16

        AgentBox {
            objectName: "claudeCodeBox"
            width: parent.width
            agent: page.agents.claudeCode
            isMain: page.agents.claudeCode.canConnect
        }
    }
    SettingGroup {
        title: page.agents.codex.name
        titleTop: 16

        AgentBox {
            objectName: "codexBox"
            width: parent.width
            agent: page.agents.codex
            isMain: !page.agents.claudeCode.canConnect
        }
    }
    SettingGroup {
        title: qsTr("Agents signed in")
        titleTop: 8
        isLast: true

        AgentTable {
            objectName: "agentTable"
            width: parent.width
            signedIn: page.agents.signedIn
        }
    }
}
