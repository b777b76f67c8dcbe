// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A field in which both sides differ, mine at the left.
Item {
    id: row

    required property ConflictModel conflict
    required property int index
    required property string label
    required property string mine
    required property string theirs
    required property var mineMarked
    required property var theirsMarked
    required property bool isTheirs

    readonly property bool isCurrent: mineCell.activeFocus || theirsCell.activeFocus

    function take(): void {
        (row.isTheirs ? theirsCell : mineCell).forceActiveFocus(Qt.TabFocusReason);
    }

    height: 40
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    Label {
        height: parent.height
        width: 88
        text: row.label
        color: Theme.ink2
        Accessible.ignored: true
    }
    ConflictCell {
        id: mineCell
        x: 104
        width: (parent.width - 104 - Theme.space8) / 2
        text: qsTr("%1, mine").arg(row.label)
        said: row.mine
        marked: row.mineMarked
        chosen: !row.isTheirs
        onClicked: row.conflict.choose(row.index, false)
    }
    ConflictCell {
        id: theirsCell
        x: mineCell.x + mineCell.width + Theme.space8
        width: mineCell.width
        text: qsTr("%1, theirs").arg(row.label)
        said: row.theirs
        marked: row.theirsMarked
        chosen: row.isTheirs
        onClicked: row.conflict.choose(row.index, true)
    }
}
