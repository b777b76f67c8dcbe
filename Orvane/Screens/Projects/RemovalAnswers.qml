// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What can be answered where something is about to be deleted, each beside what it does. The harmless one has the keyboard.
FocusScope {
    id: answers

    required property CatalogRemoval removal
    // Archiving is offered beside.
    property bool canArchive: false

    signal archived

    implicitHeight: column.implicitHeight
    focus: true
    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Delete %1").arg(removal.name)

    Component.onCompleted: keep.forceActiveFocus(Qt.OtherFocusReason)
    Keys.onEscapePressed: answers.removal.keep()
    Keys.onPressed: event => {
        event.accepted = event.modifiers === Qt.NoModifier;
        if (event.key === Qt.Key_K)
            answers.removal.keep();
        else if (event.key === Qt.Key_A && answers.canArchive)
            archive.press();
        else if (event.key === Qt.Key_D)
            answers.removal.remove();
        else
            event.accepted = false;
    }

    Column {
        id: column
        width: parent.width
        spacing: 4

        AnswerRow {
            id: keep
            width: parent.width
            titleWidth: 96
            text: qsTr("Keep")
            effect: qsTr("Everything stays as it is.")
            keys: "K"
            onClicked: answers.removal.keep()
        }
        AnswerRow {
            id: archive
            width: parent.width
            titleWidth: 96
            visible: answers.canArchive
            text: qsTr("Archive")
            effect: qsTr("Keeps its time; nobody can track on it until it is restored.")
            keys: "A"
            onClicked: {
                answers.removal.keep();
                answers.archived();
            }
        }
        AnswerRow {
            width: parent.width
            titleWidth: 96
            enabled: answers.removal.isKnown && !answers.removal.isBusy
            text: qsTr("Delete")
            effect: answers.removal.problem === "" ? answers.removal.effect : answers.removal.problem
            keys: "D"
            onClicked: answers.removal.remove()
        }
    }
}
