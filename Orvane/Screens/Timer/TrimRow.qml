// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Two entries count some time twice: what can be done about it.
Item {
    id: root

    required property LineData line

    OfferLine {
        y: 2
        width: parent.width
        icon: "overlap"
        warns: true
        text: root.line.title
        actionText: root.line.subtitle
        actionKey: "T"
        dismissText: qsTr("Leave Both")
        onAction: root.line.timer.trim(root.line.entryId)
        onDismissed: root.line.timer.list.leaveBoth(root.line.entryId)
    }
}
