// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// An entry was changed here and on another device: what holds, field by field. Nothing is sent before Return; Escape leaves
// it for later.
Sheet {
    id: sheet

    required property ConflictModel conflict

    readonly property bool isDeletion: conflict.kind === ConflictModel.Delete

    function takeRow(index: int): void {
        const row = rows.itemAt(Math.max(0, Math.min(rows.count - 1, index))) as ConflictRow;
        if (row)
            row.take();
        else
            save.forceActiveFocus(Qt.TabFocusReason);
    }

    function follow(row: int): void {
        if (conflict.entryId === "")
            close();
        else if (visible)
            takeRow(row);
        else
            open();
    }

    title: qsTr("Changed on another device")
    width: Math.min(760, (parent ? parent.width : 760) - 2 * Theme.space16)
    height: body.height + topPadding + bottomPadding
    onVisibleChanged: if (visible)
        takeRow(0)
    onClosed: conflict.cancel()
    Component.onCompleted: follow(0)

    FocusScope {
        id: body

        readonly property int current: {
            for (let index = 0; index < rows.count; ++index) {
                if ((rows.itemAt(index) as ConflictRow)?.isCurrent)
                    return index;
            }
            return -1;
        }

        function chooseSide(isTheirs: bool): void {
            const row = current;
            if (row < 0)
                return;
            sheet.conflict.choose(row, isTheirs);
            sheet.takeRow(row);
        }
        function chooseAll(areTheirs: bool): void {
            const row = current;
            sheet.conflict.chooseAll(areTheirs);
            sheet.takeRow(row);
        }

        width: sheet.availableWidth
        height: foot.y + foot.height
        focus: true
        Keys.onReturnPressed: sheet.conflict.save()
        Keys.onEnterPressed: sheet.conflict.save()
        Keys.onUpPressed: sheet.takeRow(current - 1)
        Keys.onDownPressed: sheet.takeRow(current + 1)
        Keys.onPressed: event => {
            const isLeft = event.key === Qt.Key_Left;
            event.accepted = false;
            if (!sheet.isDeletion && (isLeft || event.key === Qt.Key_Right) && (event.modifiers & ~Qt.KeypadModifier) === Qt.AltModifier) {
                chooseAll(!isLeft);
                event.accepted = true;
            } else if ((isLeft || event.key === Qt.Key_Right) && (event.modifiers & ~Qt.KeypadModifier) === Qt.NoModifier) {
                chooseSide(!isLeft);
                event.accepted = true;
            } else if (sheet.isDeletion && event.key === Qt.Key_D && event.modifiers === Qt.NoModifier) {
                sheet.conflict.deleteAnyway();
                event.accepted = true;
            }
        }

        Connections {
            target: sheet.conflict

            function onEntryChanged() {
                sheet.follow(body.current);
            }
        }

        Icon {
            id: fork
            y: 2
            name: "fork"
            color: Theme.warning
        }
        Label {
            anchors.left: fork.right
            anchors.leftMargin: Theme.space8
            type: Label.Type.Title
            text: sheet.title
        }
        Label {
            id: about
            y: 24
            width: parent.width
            wrapMode: Text.Wrap
            maximumLineCount: 3
            saidByPeople: true
            text: sheet.conflict.about
            color: Theme.ink2
        }

        Item {
            id: heads
            y: about.y + about.height + Theme.space12
            width: parent.width
            height: sheet.isDeletion ? 0 : 32
            visible: !sheet.isDeletion

            readonly property real cellWidth: (width - 104 - Theme.space8) / 2

            Repeater {
                model: [
                    { name: qsTr("Mine"), about: qsTr("changed here, not sent") },
                    { name: qsTr("Theirs"), about: qsTr("on the server now") }
                ]

                Row {
                    id: head

                    required property var modelData
                    required property int index

                    x: 104 + 12 + index * (heads.cellWidth + Theme.space8)
                    height: 32
                    spacing: Theme.space8

                    Label {
                        height: parent.height
                        text: head.modelData.name
                        font.weight: Font.DemiBold
                    }
                    Label {
                        height: parent.height
                        type: Label.Type.Small
                        text: head.modelData.about
                        color: Theme.ink2
                    }
                }
            }
        }
        Column {
            id: choices
            y: heads.y + heads.height + (sheet.isDeletion ? 0 : Theme.space8)
            width: parent.width
            spacing: Theme.space8

            Repeater {
                id: rows
                model: sheet.conflict.fields

                ConflictRow {
                    conflict: sheet.conflict
                    width: choices.width
                }
            }
        }
        Item {
            id: same
            y: choices.y + choices.height + (visible ? Theme.space8 : 0)
            width: parent.width
            height: visible ? Math.max(24, agreed.height) : 0
            visible: sheet.conflict.same !== ""

            Label {
                height: 24
                text: qsTr("The same")
                color: Theme.ink3
            }
            Label {
                id: agreed
                x: 104 + 12
                y: 4
                width: parent.width - x
                type: Label.Type.Small
                saidByPeople: true
                text: sheet.conflict.same
                color: Theme.ink2
            }
        }
        ConflictResult {
            id: result
            y: same.y + same.height + (sheet.isDeletion ? 0 : Theme.space16)
            width: parent.width
            conflict: sheet.conflict
            caption: sheet.isDeletion ? qsTr("On the server now") : qsTr("Will be saved")
        }
        Label {
            id: problem
            y: result.y + result.height + Theme.space8
            width: parent.width
            visible: text !== ""
            type: Label.Type.Small
            wrapMode: Text.Wrap
            color: Theme.danger
            text: sheet.conflict.problem
            Accessible.role: Accessible.AlertMessage
        }
        Item {
            id: foot
            y: (problem.visible ? problem.y + problem.height : result.y + result.height) + Theme.space16
            width: parent.width
            height: 32

            Row {
                spacing: Theme.space8
                visible: !sheet.isDeletion && sheet.conflict.kind !== ConflictModel.Stop

                ActionButton {
                    tall: true
                    text: qsTr("Keep All Mine")
                    keys: "Alt+Left"
                    onClicked: body.chooseAll(false)
                }
                ActionButton {
                    tall: true
                    text: qsTr("Keep All Theirs")
                    keys: "Alt+Right"
                    onClicked: body.chooseAll(true)
                }
            }
            QuietButton {
                visible: sheet.isDeletion
                tall: true
                dangerous: true
                text: qsTr("Delete Anyway")
                keys: "D"
                onClicked: sheet.conflict.deleteAnyway()
            }
            Row {
                anchors.right: parent.right
                spacing: Theme.space8

                QuietButton {
                    tall: true
                    text: qsTr("Later")
                    keys: "Esc"
                    onClicked: sheet.close()
                }
                PrimaryButton {
                    id: save
                    tall: true
                    enabled: sheet.conflict.problem === ""
                    text: sheet.isDeletion ? qsTr("Keep Theirs") : qsTr("Save")
                    keys: "Return"
                    onClicked: sheet.conflict.save()
                }
            }
        }
    }
}
