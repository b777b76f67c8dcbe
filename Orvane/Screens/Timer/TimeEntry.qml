// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A field for a time or a length: the arrows change it by a minute, with Shift by a quarter of an hour.
TextEntry {
    id: entry

    signal nudged(minutes: int)
    // It was left, and what it says counts.
    signal settled

    horizontalAlignment: TextInput.AlignHCenter
    onEditingFinished: entry.settled()
    Keys.onUpPressed: event => entry.nudged(event.modifiers & Qt.ShiftModifier ? 15 : 1)
    Keys.onDownPressed: event => entry.nudged(event.modifiers & Qt.ShiftModifier ? -15 : -1)
}
