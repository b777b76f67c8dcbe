// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane.Components

// How something is shared out: ShareBar { shares: [{color: …, share: 60}, …] }, drawn in the proportion of the shares. Says
// nothing by itself; the text beside it does.
Item {
    id: bar

    property var shares: []
    readonly property real sum: shares.reduce((total, part) => total + part.share, 0)
    readonly property real room: width - Math.max(0, shares.length - 1)

    implicitWidth: 72
    implicitHeight: 6
    Accessible.ignored: true

    Row {
        spacing: 1

        Repeater {
            model: bar.shares

            Item {
                id: part

                required property int index
                required property var modelData
                readonly property bool first: index === 0
                readonly property bool last: index === bar.shares.length - 1

                width: bar.sum > 0 ? bar.room * modelData.share / bar.sum : 0
                height: bar.height

                Rectangle {
                    anchors.fill: parent
                    radius: part.first || part.last ? height / 2 : 0
                    color: part.modelData.color
                }
                // Only the outer ends are round.
                Rectangle {
                    x: part.first ? parent.width / 2 : 0
                    width: parent.width / 2
                    height: parent.height
                    visible: part.first !== part.last
                    color: part.modelData.color
                }
            }
        }
    }
}
