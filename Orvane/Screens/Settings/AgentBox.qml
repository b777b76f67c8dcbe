// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane
import Orvane.Components

// An agent: how connecting it went, what can be done next, and the commands to copy, which unfold by themselves where the
// sentence asks for them.
Rectangle {
    id: box

    required property AgentConnection agent
    // Connecting this one is the main action of the page.
    property bool isMain: false
    // What the user chose: 1 unfolded, 0 folded, -1 neither.
    property int choice: -1
    readonly property bool unfolded: choice === -1 ? agent.asksToCopy : choice === 1
    // What takes no time does not flicker.
    property bool waits: false

    readonly property bool isRunning: agent.isRunning
    readonly property var signs: ["agent", "check", "info", "warn"]
    readonly property var signColors: [Theme.ink3, Theme.accent, Theme.ink2, Theme.danger]

    height: content.height
    radius: Theme.radiusCard
    color: "transparent"
    border.color: Theme.line2
    Accessible.role: Accessible.Grouping
    Accessible.name: agent.name

    Keys.onPressed: event => {
        event.accepted = event.matches(StandardKey.Copy) && agent.addCommand !== "";
        if (event.accepted) {
            choice = 1;
            add.copy();
        }
    }

    onIsRunningChanged: {
        const hadKeyboard = cancel.activeFocus;
        waits = false;
        if (!isRunning && hadKeyboard)
            (connector.visible ? connector : remover).forceActiveFocus(Qt.OtherFocusReason);
    }
    onWaitsChanged: if (waits)
        cancel.forceActiveFocus(Qt.OtherFocusReason)

    Timer {
        interval: 300
        running: box.isRunning
        onTriggered: box.waits = true
    }
    Column {
        id: content

        width: parent.width

        Item {
            width: parent.width
            height: Math.max(52, says.implicitHeight + 16)

            Icon {
                x: 13
                y: says.y + 2
                visible: !box.waits
                name: box.signs[box.agent.mood]
                color: box.signColors[box.agent.mood]
            }
            Spinner {
                x: 14
                y: says.y + 3
                visible: box.waits
            }
            Label {
                id: says

                x: 41
                y: Math.round((parent.height - height) / 2)
                width: actions.x - x - Theme.space12
                wrapMode: Text.Wrap
                text: box.waits ? box.agent.waiting : box.agent.message
                Accessible.role: Accessible.AlertMessage
            }
            Row {
                id: actions

                anchors.right: parent.right
                anchors.rightMargin: 13
                anchors.verticalCenter: parent.verticalCenter
                spacing: Theme.space8

                ActionButton {
                    id: cancel

                    visible: box.waits
                    text: qsTr("Cancel")
                    keys: "Esc"
                    Accessible.name: qsTr("Cancel connecting %1").arg(box.agent.name)
                    onClicked: box.agent.cancel()
                }
                ActionButton {
                    id: remover

                    visible: !box.waits && box.agent.canDisconnect
                    text: qsTr("Disconnect")
                    Accessible.name: qsTr("Disconnect %1").arg(box.agent.name)
                    onClicked: box.agent.remove()
                }
                PrimaryButton {
                    id: main

                    visible: box.isMain && !box.waits && box.agent.canConnect
                    text: qsTr("Connect")
                    Accessible.name: qsTr("Connect %1").arg(box.agent.name)
                    onClicked: box.agent.begin()
                }
                ActionButton {
                    id: other

                    visible: !box.isMain && !box.waits && box.agent.canConnect
                    text: qsTr("Connect")
                    Accessible.name: qsTr("Connect %1").arg(box.agent.name)
                    onClicked: box.agent.begin()
                }
            }
        }
        Rectangle {
            width: parent.width
            height: commands.height + 1
            radius: Theme.radiusCard
            color: Theme.chrome
            border.color: Theme.line2

            // Its upper edge is a line across, without corners.
            Rectangle {
                x: 1
                y: -1
                width: parent.width - 2
                height: Theme.radiusCard
                color: Theme.chrome
            }
            Rectangle {
                width: parent.width
                height: 1
                color: Theme.line
            }
            Column {
                id: commands

                x: 13
                width: parent.width - 2 * x
                topPadding: Theme.space4
                bottomPadding: box.unfolded ? Theme.space8 : Theme.space4

                T.Button {
                    id: fold

                    width: parent.width
                    height: 28
                    text: qsTr("Commands to copy")
                    hoverEnabled: true
                    Accessible.role: Accessible.Button
                    Accessible.name: qsTr("Commands to copy for %1").arg(box.agent.name)
                    Accessible.description: box.unfolded ? qsTr("Unfolded") : qsTr("Folded")
                    Accessible.onPressAction: fold.clicked()
                    Keys.onReturnPressed: fold.clicked()
                    Keys.onEnterPressed: fold.clicked()
                    onClicked: box.choice = box.unfolded ? 0 : 1

                    contentItem: Item {
                        Icon {
                            anchors.verticalCenter: parent.verticalCenter
                            name: box.unfolded ? "down" : "right"
                        }
                        Label {
                            x: 24
                            height: parent.height
                            width: parent.width - x
                            type: Label.Type.Small
                            font.weight: Font.DemiBold
                            color: Theme.ink2
                            text: fold.text
                            Accessible.ignored: true
                        }
                    }
                    background: Item {
                        FocusRing {
                            anchors.margins: -2
                            shown: fold.visualFocus
                        }
                    }
                }
                CopyLine {
                    id: add

                    width: parent.width
                    visible: box.unfolded
                    lead: Math.max(least, away.least)
                    name: qsTr("Add")
                    command: box.agent.addCommand
                }
                CopyLine {
                    id: away

                    width: parent.width
                    visible: box.unfolded
                    lead: add.lead
                    name: qsTr("Remove")
                    command: box.agent.removeCommand
                }
            }
        }
    }

    readonly property Item connector: isMain ? main : other
}
