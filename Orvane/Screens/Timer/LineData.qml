// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// What the model says of one line of the list.
Item {
    id: data

    required property TimerModel timer
    required property TimerColumns columns
    required property bool isChosen
    property bool isHovered: false
    required property int index
    required property int kind
    required property string entryId
    required property string title
    required property string subtitle
    required property string total
    required property string project
    required property string task
    required property string projectColor
    required property var parts
    required property int partCount
    required property string tags
    required property bool isBillable
    required property string times
    required property string duration
    required property int mark
    required property bool isLocked
    required property string spoken
    required property bool isSelected

    readonly property color shade: projectColor === "" ? Theme.none : Theme.projectColor(projectColor)

    // For who draws them, which few rows do.
    function sharesOf(parts: var): var {
        return parts.map(part => ({ color: part.color === "" ? Theme.none : Theme.projectColor(part.color), share: part.share }));
    }
}
