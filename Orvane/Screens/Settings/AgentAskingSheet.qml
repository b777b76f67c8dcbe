// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// An agent asks for leave. Nothing is allowed before an answer is taken; Escape refuses.
Sheet {
    id: sheet

    required property AgentAsking asking

    function follow(): void {
        if (!asking.isOpen)
            close();
        else if (!visible)
            open();
    }

    title: asking.name === "" ? qsTr("An agent asked for leave") : qsTr("Allow “%1” to use Orvane?").arg(asking.name)
    width: Math.min(520, (parent ? parent.width : 520) - 2 * Theme.space16)
    height: body.height + topPadding + bottomPadding
    onVisibleChanged: if (visible)
        refuse.forceActiveFocus(Qt.OtherFocusReason)
    onClosed: if (asking.isOpen)
        asking.refuse()
    Component.onCompleted: follow()

    Connections {
        target: sheet.asking

        function onChanged() {
            sheet.follow();
        }
        function onBrowserWanted(address) {
            Qt.openUrlExternally(address);
        }
    }
    Column {
        id: body

        width: sheet.availableWidth
        spacing: Theme.space8

        Label {
            width: parent.width
            type: Label.Type.Title
            wrapMode: Text.Wrap
            maximumLineCount: 3
            saidByPeople: true
            text: sheet.title
        }
        Label {
            width: parent.width
            visible: sheet.asking.name !== ""
            wrapMode: Text.Wrap
            maximumLineCount: 3
            saidByPeople: true
            color: Theme.ink2
            text: qsTr("The name is what the agent says of itself. Your answer goes to %1.").arg(sheet.asking.host)
        }
        Label {
            width: parent.width
            visible: sheet.asking.name !== ""
            wrapMode: Text.Wrap
            text: sheet.asking.mayPropose ? qsTr("It may read your projects and entries, and propose entries and changes, which wait for your answer. Nothing changes without you.") : qsTr("It may read your projects and entries. Nothing changes without you.")
        }
        Flickable {
            id: places

            // Who comes by the keyboard sees where.
            function show(row: Item): void {
                contentY = Math.max(row.y + row.height + Theme.space4 - height, Math.min(contentY, row.y - Theme.space4));
            }

            width: parent.width
            height: Math.min(choices.height, 6 * 28)
            contentHeight: choices.height
            clip: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds

            Column {
                id: choices

                width: parent.width
                topPadding: Theme.space4
                bottomPadding: Theme.space4
                spacing: Theme.space8

                Repeater {
                    model: sheet.asking.workspaces

                    Item {
                        id: row

                        required property var modelData

                        readonly property string says: modelData.organization === "" ? modelData.name : qsTr("%1, %2").arg(modelData.name).arg(modelData.organization)

                        width: body.width
                        height: 20

                        CheckMark {
                            id: mark

                            anchors.verticalCenter: parent.verticalCenter
                            text: row.says
                            checked: row.modelData.isChosen
                            enabled: sheet.asking.canAnswer
                            onActiveFocusChanged: if (activeFocus)
                                places.show(row)
                            onToggled: sheet.asking.choose(row.modelData.id, checked)
                        }
                        Label {
                            x: 28
                            width: parent.width - x
                            anchors.verticalCenter: parent.verticalCenter
                            saidByPeople: true
                            text: row.says
                            Accessible.ignored: true

                            TapHandler {
                                onTapped: mark.press()
                            }
                        }
                    }
                }
            }
        }
        Label {
            width: parent.width
            visible: text !== ""
            wrapMode: Text.Wrap
            color: Theme.danger
            text: sheet.asking.problem
            Accessible.role: Accessible.AlertMessage
        }
        AnswerRow {
            id: refuse

            width: parent.width
            titleWidth: 96
            text: sheet.asking.name === "" ? qsTr("Close") : qsTr("Refuse")
            effect: sheet.asking.name === "" ? qsTr("Nothing was allowed.") : qsTr("The agent is told, and reaches nothing.")
            keys: "Esc"
            onClicked: sheet.close()
        }
        AnswerRow {
            width: parent.width
            titleWidth: 96
            visible: sheet.asking.name !== ""
            enabled: sheet.asking.canAnswer
            text: qsTr("Allow")
            effect: qsTr("In the chosen workspaces, until you sign it out in Settings.")
            // No letter: the sheet comes by itself, perhaps in the middle of a word.
            onClicked: sheet.asking.allow()
        }
    }
}
