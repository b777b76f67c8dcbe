// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Nothing waits, or it is not known yet what does.
FocusScope {
    id: empty

    required property ReviewModel review
    required property bool showsSettled

    signal connectWanted

    Column {
        anchors.verticalCenter: parent.verticalCenter
        anchors.verticalCenterOffset: empty.showsSettled && settled.visible ? -settled.height / 2 : 0
        width: parent.width
        spacing: Theme.space8

        Label {
            type: Label.Type.Figures
            text: empty.review.isLoading ? qsTr("Looking for what waits…") : empty.review.problem !== "" ? qsTr("Not known yet") : qsTr("All settled")
            Accessible.role: Accessible.Heading
        }
        Label {
            width: parent.width
            visible: !empty.review.isLoading
            wrapMode: Text.Wrap
            text: empty.review.problem !== "" ? empty.review.problem : qsTr("What agents propose waits here until you accept it.")
            color: Theme.ink2
        }
        ActionButton {
            visible: !empty.review.isLoading
            text: empty.review.problem !== "" ? qsTr("Try Again") : qsTr("Connect Agents…")
            onClicked: empty.review.problem !== "" ? empty.review.loadAgain() : empty.connectWanted()
        }
        Item {
            width: 1
            height: Theme.space16
        }
        SettledPane {
            id: settled
            width: parent.width
            visible: empty.showsSettled && empty.review.settled.count > 0
            review: empty.review
        }
    }
}
