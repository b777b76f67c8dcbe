// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick

// Where the columns of the projects' table end, from its right edge.
QtObject {
    required property real tableWidth

    // Bars go first where there is little room.
    readonly property bool hasBars: tableWidth >= 860
    readonly property bool isNarrow: tableWidth < 600

    readonly property int rateWidth: isNarrow ? 80 : 96
    readonly property int estimateWidth: isNarrow ? 64 : hasBars ? 136 : 88
    readonly property int weekWidth: 80
    readonly property int barWidth: hasBars ? 216 : 0
    readonly property int rateRight: 16
    readonly property int estimateRight: rateRight + rateWidth + 16
    readonly property int weekRight: estimateRight + estimateWidth + 16
    readonly property int barRight: weekRight + weekWidth + 16
    readonly property int tasksRight: hasBars ? barRight + barWidth + 40 : barRight
    readonly property int nameRight: tasksRight + 56 + 8
}
