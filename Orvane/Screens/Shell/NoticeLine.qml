// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What was just done, or why it could not be.
Notice {
    id: line

    required property Notices notices

    signal undo

    visible: notices.isShown
    text: notices.text
    iconName: notices.isFailure ? "warn" : "check"
    isFailure: notices.isFailure
    actionText: notices.action === Notices.Undo ? qsTr("Undo") : notices.isFailure ? qsTr("Dismiss") : ""
    actionKeys: notices.action === Notices.Undo ? "Ctrl+Z" : ""
    onActed: notices.action === Notices.Undo ? line.undo() : notices.dismiss()
}
