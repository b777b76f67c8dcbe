// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Start, stop, correct.
FocusScope {
    id: page

    required property AppModel app
    required property TimerModel timer
    required property bool isWide

    readonly property KeyTable keys: app.keys
    readonly property string returnText: timer.field.action === "" ? qsTr("Start") : timer.field.action

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Timer")

    function takeField(): void {
        field.take();
    }

    Item {
        id: main
        width: parent.width - (rail.visible ? rail.width : 0)
        height: parent.height

        RunningBand {
            id: band
            timer: page.timer
            isWide: page.isWide
            width: parent.width
            visible: page.timer.isRunning
        }
        // What runs is edited below its band, where it stands.
        Loader {
            id: runningEditor
            x: Theme.space24
            y: band.height + Theme.space12
            width: Math.min(parent.width - 2 * x, 1040)
            height: item ? (item as Item).implicitHeight : 0

            readonly property bool isWanted: band.visible && page.timer.isRunningEdited

            onIsWantedChanged: {
                if (isWanted) {
                    setSource("EntryEditorForm.qml", { timer: page.timer, columns: entries.columns });
                } else {
                    source = "";
                    field.take();
                }
            }
        }
        SentenceField {
            id: field
            field: page.timer.field
            focus: true
            onUndo: page.app.undo()
            x: Theme.space24
            y: (band.visible ? band.height : 8) + Theme.space16 + (runningEditor.height > 0 ? runningEditor.height + Theme.space12 : 0)
            width: Math.min(parent.width - 2 * x, 1040)
        }
        SetAside {
            id: setAside
            refused: page.timer.refused
            x: Theme.space24
            anchors.top: field.bottom
            anchors.topMargin: Theme.space12
            width: Math.min(parent.width - 2 * x, 1040)
        }
        TimerEntries {
            id: entries
            timer: page.timer
            isWide: page.isWide
            x: Theme.space24
            anchors.top: setAside.visible ? setAside.bottom : field.bottom
            anchors.topMargin: Theme.space8
            anchors.bottom: keys.top
            width: Math.min(parent.width - 2 * x, 1040)
            visible: !empty.isWanted && !failed.isWanted && !loading.isWanted
            onLeftUpwards: field.take()
        }
        WantedLoader {
            id: empty
            x: entries.x
            y: entries.y
            width: entries.width
            height: entries.height
            isWanted: page.timer.isEmpty
            page: "TimerEmpty.qml"
        }
        WantedLoader {
            id: loading
            x: entries.x
            y: entries.y
            width: entries.width
            height: entries.height
            isWanted: page.timer.isLoading
            page: "TimerLoading.qml"
        }
        WantedLoader {
            id: failed
            x: entries.x
            y: entries.y
            width: entries.width
            height: entries.height
            isWanted: page.app.phase === AppModel.Failed
            page: "TimerFailed.qml"
            properties: ({ timer: page.timer })
        }
        KeyBar {
            id: keys
            anchors.bottom: parent.bottom
            width: parent.width
            hints: page.timer.editor.entryId !== "" ? [
                { keys: "Return", text: qsTr("Save") },
                { keys: "Esc", text: qsTr("Leave as it was") },
                { keys: "Tab", text: qsTr("Next field") },
                { keys: "Up Down", text: qsTr("1 min") },
                { keys: "Shift+Up Shift+Down", text: qsTr("15 min") }
            ] : entries.activeFocus && page.timer.several.count > 1 ? [
                { keys: "Shift+Up Shift+Down", text: qsTr("Choose") },
                { keys: "Return", text: qsTr("Edit All") },
                { keys: "Del", text: qsTr("Delete All") },
                { keys: "Esc", text: qsTr("None") }
            ] : entries.activeFocus && entries.isConflictChosen ? [
                { keys: "Up Down", text: qsTr("Choose") },
                { keys: "Return", text: qsTr("Settle") },
                { keys: page.keys.caps[KeyTable.Undo], text: qsTr("Undo") }
            ] : entries.activeFocus ? [
                { keys: "Up Down", text: qsTr("Choose") },
                { keys: page.keys.caps[KeyTable.EditEntry], text: qsTr("Edit") },
                { keys: page.keys.caps[KeyTable.ContinueEntry], text: qsTr("Continue") },
                { keys: page.keys.caps[KeyTable.SplitEntry], text: qsTr("Split") },
                { keys: page.keys.caps[KeyTable.DuplicateEntry], text: qsTr("Duplicate") },
                { keys: page.keys.caps[KeyTable.DeleteEntry], text: qsTr("Delete") }
            ] : page.timer.isRunning ? [
                { keys: "Return", text: page.returnText },
                { keys: "Down", text: qsTr("Entries") },
                { keys: page.keys.caps[KeyTable.StartOrStop], text: qsTr("Stop") },
                { keys: page.keys.caps[KeyTable.EditRunning], text: qsTr("Edit What Runs") },
                { keys: page.keys.caps[KeyTable.OpenPanel], text: qsTr("Panel") }
            ] : [
                { keys: "Return", text: page.returnText },
                { keys: "Down", text: qsTr("Entries") },
                { keys: page.keys.caps[KeyTable.StartOrStop], text: qsTr("Continue") },
                { keys: page.keys.caps[KeyTable.OpenPanel], text: qsTr("Panel") }
            ]
        }
    }
    TimerRail {
        id: rail
        anchors.right: parent.right
        width: 296
        height: parent.height
        visible: page.isWide
        timer: page.timer
    }

    Connections {
        target: page.timer.refused

        function onFieldFilled() {
            field.take();
        }
    }
    SheetLoader {
        isWanted: page.timer.split.entryId !== ""
        page: "SplitSheet.qml"
        properties: ({ timer: page.timer })
    }
    SheetLoader {
        isWanted: page.timer.conflict.entryId !== ""
        page: "ConflictSheet.qml"
        properties: ({ conflict: page.timer.conflict })
    }

    Keys.onDownPressed: event => {
        event.accepted = entries.visible && !entries.activeFocus;
        if (event.accepted)
            entries.enter();
    }
}
