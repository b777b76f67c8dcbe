// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// One line of the list: a day's head, a folded day, an entry or its editor, a share of a split entry.
LineData {
    id: line

    readonly property bool isEdited: kind === TimerList.Entry && timer.editor.entryId !== "" && timer.editor.entryId === entryId

    // The chosen entries have their editor below the last of them.
    readonly property bool hasSeveral: kind === TimerList.Entry && timer.several.count > 1 && timer.several.lastId === entryId
    readonly property SeveralForm severalForm: several.item as SeveralForm

    // The editor has gone, and the keyboard goes back to the list.
    signal edited

    property bool isPooled: false

    // A line that waits to be used again says nothing.
    visible: !isPooled
    ListView.onPooled: isPooled = true
    ListView.onReused: isPooled = false

    height: isEdited ? editor.height + 8 : kind === TimerList.Day ? 40 : kind === TimerList.Share ? 28 : kind === TimerList.Offer ? 44 : 36 + (hasSeveral ? several.height + 8 : 0)
    Accessible.role: Accessible.ListItem
    Accessible.name: spoken
    Accessible.focusable: true
    Accessible.onPressAction: line.act()

    function act() {
        if (kind === TimerList.Entry)
            timer.conflict.open(entryId) || timer.editor.open(entryId);
        else if (kind === TimerList.Folded || kind === TimerList.Day)
            timer.list.turn(index);
    }

    HoverHandler {
        onHoveredChanged: line.isHovered = hovered
    }
    TapHandler {
        acceptedModifiers: Qt.ControlModifier
        enabled: line.kind === TimerList.Entry && !line.isEdited
        onTapped: point => {
            if (point.position.y < content.height)
                line.timer.several.toggle(line.entryId);
        }
    }
    TapHandler {
        acceptedModifiers: Qt.NoModifier
        enabled: !line.isEdited && line.kind !== TimerList.Share && line.kind !== TimerList.Offer
        // Not what is in the editor below.
        onTapped: point => {
            if (point.position.y < content.height)
                line.act();
        }
    }
    Rectangle {
        anchors.fill: content
        visible: line.isSelected && !line.isEdited
        color: Theme.accentTint
    }
    Rectangle {
        anchors.fill: content
        visible: !line.isEdited && (line.kind === TimerList.Entry || line.kind === TimerList.Folded) && (line.isHovered || line.isChosen)
        radius: Theme.radiusControl
        color: line.isHovered ? Theme.hover : "transparent"
        border.width: line.isChosen ? 2 : 0
        border.color: Theme.accent
    }
    Loader {
        id: content
        x: 4
        width: parent.width - 8
        height: line.hasSeveral ? 36 : parent.height

        readonly property string wanted: line.isEdited ? "" : line.kind === TimerList.Day ? "DayHead.qml" : line.kind === TimerList.Folded ? "FoldedDay.qml" : line.kind === TimerList.Share ? "ShareRow.qml" : line.kind === TimerList.Offer ? "TrimRow.qml" : "EntryRow.qml"

        function update(): void {
            if (wanted === "")
                source = "";
            else
                setSource(wanted, { line: line });
        }
        onWantedChanged: if (status !== Loader.Null || wanted !== "")
            update()
    }
    Loader {
        id: editor
        x: 4
        y: 4
        width: parent.width - 8
        height: item ? (item as Item).implicitHeight : 0

        function update(): void {
            if (line.isEdited) {
                setSource("EntryEditorForm.qml", { timer: line.timer, columns: line.columns });
            } else if (status !== Loader.Null) {
                source = "";
                line.edited();
            }
        }
        Component.onCompleted: update()
    }
    onIsEditedChanged: editor.update()

    Rectangle {
        anchors.right: parent.right
        anchors.rightMargin: 4 + 12
        y: 10
        width: 16
        height: 16
        visible: line.isSelected
        radius: Theme.radiusBlock
        color: Theme.accentFill

        Icon {
            anchors.centerIn: parent
            size: 12
            name: "check"
            color: Theme.inkOnAccent
        }
    }
    Loader {
        id: several
        x: 4
        y: 40
        width: parent.width - 8
        height: item ? (item as Item).implicitHeight : 0

        readonly property bool isWanted: line.hasSeveral

        onIsWantedChanged: isWanted ? setSource("SeveralForm.qml", { timer: line.timer }) : source = ""
    }
}
