// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane.Components

// Still bars in the places of the rows, once loading takes longer than one waits without noticing.
Item {
    id: loading

    readonly property list<int> widths: [124, 90, 136, 74, 0, 70, 116]

    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("Loading your entries")

    Timer {
        interval: 300
        running: true
        onTriggered: bars.visible = true
    }
    Column {
        id: bars
        objectName: "bars"
        visible: false
        width: parent.width
        topPadding: 40

        Repeater {
            model: loading.widths

            Item {
                id: row
                required property int modelData
                width: bars.width
                height: 36

                Skeleton {
                    x: 16
                    anchors.verticalCenter: parent.verticalCenter
                    visible: row.modelData > 0
                    width: row.modelData
                }
                Skeleton {
                    x: parent.width * 0.42
                    anchors.verticalCenter: parent.verticalCenter
                    visible: row.modelData > 0
                    width: 80
                }
                Skeleton {
                    x: parent.width - 210
                    anchors.verticalCenter: parent.verticalCenter
                    visible: row.modelData > 0
                    width: 80
                }
                Skeleton {
                    x: parent.width - 90
                    anchors.verticalCenter: parent.verticalCenter
                    visible: row.modelData > 0
                    width: 44
                }
            }
        }
    }
}
