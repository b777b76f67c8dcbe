// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Ways to sign in, each of which can be removed once that was answered in its place.
Rectangle {
    id: table

    // { id, name, since, used }
    required property var logins
    required property string iconName
    required property string name
    property bool isAway: false
    // Whose removal is being asked about; empty when none is.
    property string asked

    signal removed(string id)

    height: rows.height
    visible: logins.length > 0
    radius: Theme.radiusCard
    color: "transparent"
    border.color: Theme.line2
    Accessible.role: Accessible.List
    Accessible.name: name

    onLoginsChanged: asked = ""

    Column {
        id: rows

        width: parent.width

        Repeater {
            model: table.logins

            Item {
                id: row

                required property int index
                required property var modelData

                readonly property bool asks: table.asked === modelData.id
                readonly property int rest: width - 40 - buttons.width - Theme.space8

                width: rows.width
                height: 36
                Accessible.role: Accessible.ListItem
                Accessible.name: qsTr("%1, %2, %3").arg(modelData.name).arg(modelData.since).arg(modelData.used)

                onAsksChanged: if (asks)
                    keep.forceActiveFocus(Qt.OtherFocusReason)

                Rectangle {
                    width: parent.width
                    height: 1
                    visible: row.index > 0
                    color: Theme.line
                }
                Icon {
                    x: 12
                    anchors.verticalCenter: parent.verticalCenter
                    name: table.iconName
                }
                Label {
                    x: 40
                    anchors.verticalCenter: parent.verticalCenter
                    width: row.asks ? row.rest : row.rest * 0.3
                    saidByPeople: true
                    text: row.modelData.name
                    Accessible.ignored: true
                }
                Label {
                    x: row.width > 560 ? 236 : 40 + row.rest * 0.33
                    anchors.verticalCenter: parent.verticalCenter
                    visible: !row.asks && row.width > 420
                    type: Label.Type.Small
                    color: Theme.ink2
                    text: row.modelData.since
                    Accessible.ignored: true
                }
                Label {
                    x: row.width > 560 ? 236 + (row.width - 236 - buttons.width) * 0.4 : 40 + row.rest * 0.68
                    width: row.width - x - buttons.width - Theme.space16
                    anchors.verticalCenter: parent.verticalCenter
                    visible: !row.asks
                    saidByPeople: true
                    type: Label.Type.Small
                    color: Theme.ink2
                    text: row.modelData.used
                    Accessible.ignored: true
                }
                Row {
                    id: buttons

                    anchors.right: parent.right
                    anchors.rightMargin: Theme.space8
                    anchors.verticalCenter: parent.verticalCenter
                    Keys.onEscapePressed: table.asked = ""

                    QuietButton {
                        visible: !row.asks
                        enabled: !table.isAway
                        text: qsTr("Remove")
                        Accessible.name: qsTr("Remove %1").arg(row.modelData.name)
                        onClicked: table.asked = row.modelData.id
                    }
                    QuietButton {
                        id: keep

                        visible: row.asks
                        text: qsTr("Keep")
                        Accessible.name: qsTr("Keep %1").arg(row.modelData.name)
                        onClicked: table.asked = ""
                    }
                    QuietButton {
                        visible: row.asks
                        dangerous: true
                        text: qsTr("Remove for Good")
                        Accessible.name: qsTr("Remove %1 for good").arg(row.modelData.name)
                        onClicked: table.removed(row.modelData.id)
                    }
                }
            }
        }
    }
}
