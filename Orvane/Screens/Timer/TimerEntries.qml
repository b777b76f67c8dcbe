// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The entries by day.
FocusScope {
    id: root

    required property TimerModel timer
    required property bool isWide

    readonly property TimerColumns columns: TimerColumns {
        isWide: root.isWide
        isNarrow: root.width < 560
    }

    readonly property bool isConflictChosen: (list.currentItem as TimerLine)?.mark === TimerList.Conflict

    // The keyboard leaves upwards.
    signal leftUpwards

    // What a key does with the entries that are chosen; false where it does nothing with several.
    function actOnSeveral(event: var): bool {
        const row = root.timer.list.rowOf(root.timer.several.lastId);
        if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter) {
            list.positionViewAtIndex(row, ListView.Contain);
            (list.itemAtIndex(row) as TimerLine)?.severalForm?.take();
        } else if (event.key === Qt.Key_Delete || event.key === Qt.Key_Backspace) {
            root.timer.several.remove();
        } else {
            // Other letters mean one entry.
            return event.key === Qt.Key_C || event.key === Qt.Key_S || event.key === Qt.Key_D || event.key === Qt.Key_T;
        }
        return true;
    }

    function enter() {
        list.forceActiveFocus(Qt.TabFocusReason);
        if (list.currentIndex < 0 || root.timer.list.choosable(list.currentIndex - 1, 1) !== list.currentIndex)
            list.currentIndex = root.timer.list.choosable(-1, 1);
        // The row itself, so that it is read out.
        list.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }

    ListView {
        id: list
        objectName: "entries"
        anchors.fill: parent
        anchors.leftMargin: -4
        anchors.rightMargin: -4
        clip: true
        focus: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        model: root.timer.list
        reuseItems: true
        currentIndex: -1
        highlightFollowsCurrentItem: false
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Entries")

        // Where choosing several began.
        property int anchor: -1

        function extend(by: int): void {
            if (root.timer.several.count === 0)
                anchor = currentIndex;
            const next = root.timer.list.choosable(currentIndex, by);
            if (next === currentIndex)
                return;
            currentIndex = next;
            positionViewAtIndex(next, ListView.Contain);
            root.timer.several.chooseRows(anchor, next);
            // Their editor stands below the last of them.
            if (by > 0)
                Qt.callLater(() => list.positionViewAtIndex(next, ListView.Contain));
        }
        function step(by: int) {
            root.timer.several.clear();
            const next = root.timer.list.choosable(currentIndex, by);
            if (next === currentIndex && by < 0) {
                root.leftUpwards();
            } else {
                currentIndex = next;
                positionViewAtIndex(next, ListView.Contain);
            }
        }
        function entryId(): string {
            return root.timer.list.kindAt(currentIndex) === TimerList.Entry ? root.timer.list.idAt(currentIndex) : "";
        }

        Keys.onUpPressed: event => event.modifiers & Qt.ShiftModifier ? extend(-1) : step(-1)
        Keys.onDownPressed: event => event.modifiers & Qt.ShiftModifier ? extend(1) : step(1)
        Keys.onEscapePressed: event => {
            event.accepted = root.timer.several.count > 0;
            root.timer.several.clear();
        }
        Keys.onLeftPressed: if (root.timer.list.kindAt(currentIndex) === TimerList.Entry)
            root.timer.list.turn(currentIndex)
        Keys.onRightPressed: if (root.timer.list.kindAt(currentIndex) === TimerList.Folded)
            root.timer.list.turn(currentIndex)
        Keys.onPressed: event => {
            const id = entryId();
            const chord = KeyNames.chord(event.key, event.modifiers);
            const command = root.timer.keys.entryCommand(chord);
            event.accepted = true;
            if (root.timer.several.count > 1 && root.actOnSeveral(event))
                return;
            if (chord === "Return" && id === "")
                root.timer.list.turn(currentIndex);
            else if (command === KeyTable.EditEntry)
                root.timer.conflict.open(id) || root.timer.editor.open(id);
            else if (command === KeyTable.ContinueEntry)
                root.timer.continueEntry(id);
            else if (command === KeyTable.TrimEntry)
                event.accepted = root.timer.trim(id);
            else if (command === KeyTable.SplitEntry)
                root.timer.split.open(id);
            else if (command === KeyTable.DuplicateEntry)
                root.timer.duplicate(id);
            else if (command === KeyTable.DeleteEntry)
                root.timer.remove(id);
            else
                event.accepted = false;
        }

        delegate: TimerLine {
            timer: root.timer
            columns: root.columns
            width: list.width
            isChosen: ListView.isCurrentItem && list.activeFocus
            onEdited: {
                // Another one that is edited now has the keyboard.
                if (timer.editor.entryId !== "")
                    return;
                list.currentIndex = index;
                forceActiveFocus(Qt.OtherFocusReason);
            }
        }

        bottomMargin: 72
    }
    // What came from elsewhere above it moves neither the row that the pointer is on its way to press nor the one that is
    // edited. A pointer that lies still is on its way nowhere, and what one types oneself shows where it belongs.
    HoverHandler {
        id: pointer

        property real movedAt: 0
        readonly property real onItsWay: 3000

        function aimedAt(): string {
            const row = hovered && Date.now() - movedAt < onItsWay ? list.indexAt(list.width / 2, list.contentY + point.position.y) : -1;
            return row < 0 ? "" : root.timer.list.idAt(row);
        }
        onPointChanged: movedAt = Date.now()
        onHoveredChanged: if (!hovered)
            list.returnToBounds()
    }
    Connections {
        id: hold

        property string entryId: ""
        property real place: 0

        target: root.timer.list

        function begin(): void {
            if (entryId !== "")
                return;
            const id = root.timer.editor.entryId || pointer.aimedAt();
            const item = id === "" ? null : list.itemAtIndex(root.timer.list.rowOf(id));
            if (item === null)
                return;
            entryId = id;
            place = item.y - list.contentY;
            after.start();
        }
        function end(): void {
            list.forceLayout();
            const item = list.itemAtIndex(root.timer.list.rowOf(entryId));
            entryId = "";
            if (item !== null)
                list.contentY = item.y - place;
        }
        function onRowsAboutToBeInserted() {
            begin();
        }
        function onRowsAboutToBeRemoved() {
            begin();
        }
    }
    // Once all of a change is in the list.
    Timer {
        id: after
        interval: 0
        onTriggered: hold.end()
    }
    // Their editor has gone, and the keyboard goes back to the row.
    Connections {
        target: root.timer.several

        function onChosenChanged() {
            if (root.timer.several.count === 0 && root.activeFocus)
                list.currentItem?.forceActiveFocus(Qt.OtherFocusReason);
        }
    }
    WeekBefore {
        parent: list.contentItem
        y: list.originY + list.contentHeight
        width: list.width
        timer: root.timer
    }
}
