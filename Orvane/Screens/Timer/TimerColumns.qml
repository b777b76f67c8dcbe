// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick

// The columns of the timer's list, in the room there is.
QtObject {
    required property bool isWide
    required property bool isNarrow

    readonly property int projectWidth: isWide ? 192 : isNarrow ? 120 : 152
    readonly property int timesWidth: isWide ? 112 : isNarrow ? 92 : 104
    readonly property int durationWidth: isWide ? 64 : isNarrow ? 52 : 60
}
