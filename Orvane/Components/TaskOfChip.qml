// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// The task in a ProjectChip, behind the project.
Label {
    required property ProjectChip chip

    saidByPeople: true
    type: chip.type
    text: " › " + chip.task
    color: chip.taskInk
    Accessible.ignored: true
}
