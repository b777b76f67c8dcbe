// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// What a page of settings lies on: a column of SettingGroups that scrolls, and why changes do not hold now, if so.
FocusScope {
    id: sheet

    default property alias content: column.data
    property string problem
    property string note
    readonly property int margin: width < 620 ? 16 : 32

    Flickable {
        id: flick
        anchors.fill: parent
        contentHeight: column.height + 2
        boundsBehavior: Flickable.StopAtBounds
        clip: true

        // What has the keyboard is seen.
        readonly property Item focused: sheet.Window.activeFocusItem

        // What unfolds around it comes into view too, until somebody looks elsewhere.
        property bool follows: false

        onFocusedChanged: {
            follows = true;
            reveal();
        }
        onContentHeightChanged: if (follows)
            reveal()
        onMovementStarted: follows = false

        function reveal(): void {
            if (!focused || !sheet.activeFocus)
                return;
            const at = focused.mapToItem(column, 0, 0);
            if (at.y < contentY + 12)
                contentY = Math.max(0, at.y - 40);
            else if (at.y + focused.height > contentY + height - 12)
                contentY = Math.min(Math.max(0, contentHeight - height), at.y + focused.height - height + 40);
        }

        Column {
            id: column
            x: sheet.margin
            width: flick.width - 2 * sheet.margin

            Item {
                width: parent.width
                height: visible ? 44 : 0
                visible: says.text !== ""

                Icon {
                    id: sign
                    y: 20
                    name: sheet.problem !== "" ? "warn" : "info"
                    color: sheet.problem !== "" ? Theme.danger : Theme.ink3
                }
                Label {
                    id: says
                    x: 24
                    y: 18
                    width: parent.width - x
                    text: sheet.problem !== "" ? sheet.problem : sheet.note
                    color: sheet.problem !== "" ? Theme.danger : Theme.ink2
                    Accessible.role: Accessible.AlertMessage
                }
            }
        }
    }
}
