// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane

// A command by the keys that it has now.
Shortcut {
    required property KeyTable table
    required property int command

    readonly property string chords: table.chords[command]

    sequences: chords.split(" ")
}
