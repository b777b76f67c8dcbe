// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What was settled lately; each can wait again.
Column {
    id: pane

    required property ReviewModel review

    visible: review.settled.count > 0
    spacing: 4
    Accessible.role: Accessible.List
    Accessible.name: qsTr("Settled")

    Label {
        type: Label.Type.Small
        font.weight: Font.DemiBold
        text: qsTr("Settled")
        color: Theme.ink2
        Accessible.role: Accessible.Heading
    }
    Repeater {
        model: pane.review.settled

        SettledRow {
            review: pane.review
            width: pane.width
        }
    }
}
