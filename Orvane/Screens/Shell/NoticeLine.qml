// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What was just done, or why it could not be.
Notice {
    id: line

    required property Notices notices
    required property string undoKeys

    signal undo

    visible: notices.isShown
    text: notices.text
    icon: notices.isFailure ? "warn" : "check"
    iconColor: notices.isFailure ? Theme.danger : Theme.accent
    actionText: notices.action === Notices.Undo ? qsTr("Undo") : notices.isFailure ? qsTr("Dismiss") : ""
    actionKey: notices.action === Notices.Undo ? line.undoKeys : ""
    onAction: notices.action === Notices.Undo ? line.undo() : notices.dismiss()
}
