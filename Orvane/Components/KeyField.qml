// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// The keys of a command. A click, Return or Space begins to record; then keys are taken as they are pressed, modifiers are
// shown as they are held, Backspace takes the keys away and Escape leaves. The owner says when it is recording.
T.AbstractButton {
    id: field

    required property string title
    // Several that do the same stand apart by spaces.
    required property string keys
    property bool recording: false
    // Pressed, and waiting for an answer.
    property string wanted
    property bool restorable: false
    property bool lit: hovered
    property string held
    readonly property bool edged: recording || lit || visualFocus

    signal recordingWanted
    signal chordPressed(chord: string)
    signal agreed
    signal dropped
    signal cleared
    signal restored

    implicitHeight: recording ? 28 : 26
    focusPolicy: Qt.StrongFocus
    hoverEnabled: true
    Accessible.role: Accessible.Button
    Accessible.name: recording ? qsTr("Press keys for %1").arg(title) : qsTr("Keys of %1: %2").arg(title).arg(keys === "" ? qsTr("none") : KeyNames.text(keys))
    Accessible.onPressAction: field.recordingWanted()
    onClicked: field.recordingWanted()
    onRecordingChanged: {
        held = "";
        if (recording)
            forceActiveFocus(Qt.OtherFocusReason);
    }
    onActiveFocusChanged: if (!activeFocus && recording && wanted === "")
        field.dropped()

    // While it records every key is its own, shortcuts of the window too.
    Keys.onShortcutOverride: event => event.accepted = field.recording
    Keys.onPressed: event => {
        if (!field.recording) {
            event.accepted = event.key === Qt.Key_Return || event.key === Qt.Key_Enter;
            if (event.accepted)
                field.recordingWanted();
            return;
        }
        event.accepted = true;
        const chord = KeyNames.chord(event.key, event.modifiers);
        field.held = chord === "" ? KeyNames.held(event.key, event.modifiers) : "";
        if (chord === "Esc")
            field.dropped();
        else if (chord === "Backspace")
            field.cleared();
        else if (chord === "Return" && field.wanted !== "")
            field.agreed();
        else if (chord !== "")
            field.chordPressed(chord);
    }
    Keys.onReleased: event => {
        event.accepted = field.recording;
        if (field.recording)
            field.held = "";
    }

    background: Rectangle {
        radius: Theme.radiusControl
        color: field.edged ? Theme.content : "transparent"
        border.width: field.recording || field.visualFocus ? 2 : field.edged ? 1 : 0
        border.color: field.recording || field.visualFocus ? Theme.accent : Theme.field
    }
    contentItem: Item {
        Row {
            x: 4
            anchors.verticalCenter: parent.verticalCenter
            spacing: 4

            Repeater {
                model: (field.recording ? (field.held !== "" ? field.held : field.wanted) : field.keys).split(" ").filter(keys => keys !== "")

                KeyCap {
                    required property string modelData

                    keys: modelData
                }
            }
            Label {
                anchors.verticalCenter: parent.verticalCenter
                leftPadding: 4
                visible: field.recording
                type: Label.Type.Small
                text: qsTr("Press keys")
                color: Theme.ink2
                Accessible.ignored: true
            }
        }
    }
    IconButton {
        anchors.right: clear.left
        anchors.verticalCenter: parent.verticalCenter
        width: 22
        height: 22
        visible: field.restorable && !field.recording && field.edged
        focusPolicy: Qt.NoFocus
        iconName: "undo"
        text: qsTr("Restore the keys of %1").arg(field.title)
        onClicked: field.restored()
    }
    IconButton {
        id: clear
        anchors.right: parent.right
        anchors.rightMargin: 2
        anchors.verticalCenter: parent.verticalCenter
        width: 22
        height: 22
        visible: field.edged && (field.recording || field.keys !== "")
        focusPolicy: Qt.NoFocus
        iconName: "x"
        text: field.recording ? qsTr("Leave as it was") : qsTr("No keys for %1").arg(field.title)
        onClicked: field.recording ? field.dropped() : field.cleared()
    }
}
