// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick

// The columns of the timer's list, in the room there is.
QtObject {
    required property bool isWide
    required property bool isNarrow

    readonly property int projectWidth: isWide ? 192 : isNarrow ? 120 : 152
    readonly property int timesWidth: isWide ? 112 : isNarrow ? 92 : 104
    // From the right edge to the times, and to the projects.
    readonly property int timesRight: 40 + durationWidth + 12
    readonly property int projectRight: timesRight + timesWidth + 12 + (isWide ? 16 + 12 + 104 + 12 : 0)
    readonly property int durationWidth: isWide ? 64 : isNarrow ? 52 : 60
}
