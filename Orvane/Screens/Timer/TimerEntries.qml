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

    // The keyboard leaves upwards.
    signal leftUpwards

    function enter() {
        list.forceActiveFocus(Qt.TabFocusReason);
        if (list.currentIndex < 0 || root.timer.list.choosable(list.currentIndex - 1, 1) !== list.currentIndex)
            list.currentIndex = root.timer.list.choosable(-1, 1);
        // The row itself, so that it is read out.
        list.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }

    ListView {
        id: list
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

        function step(by: int) {
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

        Keys.onUpPressed: step(-1)
        Keys.onDownPressed: step(1)
        Keys.onLeftPressed: if (root.timer.list.kindAt(currentIndex) === TimerList.Entry)
            root.timer.list.turn(currentIndex)
        Keys.onRightPressed: if (root.timer.list.kindAt(currentIndex) === TimerList.Folded)
            root.timer.list.turn(currentIndex)
        Keys.onPressed: event => {
            const id = entryId();
            const chord = KeyNames.chord(event.key, event.modifiers);
            const command = root.timer.keys.entryCommand(chord);
            event.accepted = true;
            if (chord === "Return" && id === "")
                root.timer.list.turn(currentIndex);
            else if (command === KeyTable.EditEntry)
                root.timer.editor.open(id);
            else if (command === KeyTable.ContinueEntry)
                root.timer.continueEntry(id);
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
    WeekBefore {
        parent: list.contentItem
        y: list.originY + list.contentHeight
        width: list.width
        timer: root.timer
    }
}
