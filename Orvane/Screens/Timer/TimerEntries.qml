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
            event.accepted = true;
            if ((event.key === Qt.Key_Return || event.key === Qt.Key_Enter) && id === "")
                root.timer.list.turn(currentIndex);
            else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                root.timer.conflict.open(id) || root.timer.editor.open(id);
            else if (event.key === Qt.Key_C && event.modifiers === Qt.NoModifier)
                root.timer.continueEntry(id);
            else if (event.key === Qt.Key_T && event.modifiers === Qt.NoModifier)
                event.accepted = root.timer.trim(id);
            else if (event.key === Qt.Key_S && event.modifiers === Qt.NoModifier)
                root.timer.split.open(id);
            else if (event.key === Qt.Key_D && event.modifiers === Qt.ControlModifier)
                root.timer.duplicate(id);
            else if (event.key === Qt.Key_Delete || event.key === Qt.Key_Backspace)
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
