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
    readonly property SeveralForm severalForm: editor.item as SeveralForm

    // The editor has gone, and the keyboard goes back to the list.
    signal edited

    property bool isPooled: false

    // A line that waits to be used again says nothing.
    visible: !isPooled
    ListView.onPooled: isPooled = true
    ListView.onReused: isPooled = false

    height: isEdited ? editor.height + 8 : kind === TimerList.Day ? 40 : kind === TimerList.Share ? 28 : kind === TimerList.Offer ? 44 : 36 + (hasSeveral ? editor.height + 8 : 0)
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
    // Below what the line says.
    Loader {
        readonly property bool isWanted: !line.isEdited && (line.isSelected || (line.kind === TimerList.Entry || line.kind === TimerList.Folded) && (line.isHovered || line.isChosen))

        anchors.fill: content
        onIsWantedChanged: isWanted ? setSource("LineGround.qml", { line: line }) : source = ""
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
    // And above it.
    Loader {
        readonly property bool isWanted: line.kind === TimerList.Entry && !line.isEdited && (line.isHovered || line.isSelected)

        anchors.fill: content
        onIsWantedChanged: isWanted ? setSource("EntryActions.qml", { line: line }) : source = ""
    }
    // The entry's editor in its place, or below it that of all that are chosen.
    Loader {
        id: editor
        x: 4
        y: line.isEdited ? 4 : 40
        width: parent.width - 8
        height: item ? (item as Item).implicitHeight : 0

        readonly property string wanted: line.isEdited ? "EntryEditorForm.qml" : line.hasSeveral ? "SeveralForm.qml" : ""
        property bool wasEdited: false

        function update(): void {
            if (wanted !== "")
                setSource(wanted, line.isEdited ? { timer: line.timer, columns: line.columns } : { timer: line.timer });
            else if (status !== Loader.Null)
                source = "";
            if (wasEdited && !line.isEdited)
                line.edited();
            wasEdited = line.isEdited;
        }
        onWantedChanged: update()
    }
}
