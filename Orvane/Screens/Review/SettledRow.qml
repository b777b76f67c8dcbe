// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Something settled: what became of it, what it was about and when, and the way back.
Item {
    id: row

    required property ReviewModel review
    required property string offerId
    required property string what
    required property string about
    required property string at
    required property bool isTaken
    required property bool mayReopen

    implicitHeight: 46
    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("%1: %2, %3").arg(what).arg(about).arg(at)

    HoverHandler {
        id: hover
    }
    Icon {
        id: mark
        y: 8
        name: row.isTaken ? "check" : "x"
        color: Theme.ink3
    }
    Label {
        id: what
        anchors.left: mark.right
        anchors.leftMargin: 8
        anchors.right: at.left
        anchors.rightMargin: 8
        y: 6
        font.weight: Font.Medium
        text: row.what
        Accessible.ignored: true
    }
    Label {
        anchors.left: what.left
        anchors.right: parent.right
        y: 24
        type: Label.Type.Small
        saidByPeople: true
        text: row.about
        color: Theme.ink2
        Accessible.ignored: true
    }
    Label {
        id: at
        anchors.right: parent.right
        y: 8
        type: Label.Type.Small
        text: row.at
        color: Theme.ink3
        opacity: again.visible && again.opacity > 0 ? 0 : 1
        Accessible.ignored: true
    }
    QuietButton {
        id: again
        anchors.right: parent.right
        y: 0
        // Reached with the keyboard too.
        opacity: hover.hovered || activeFocus ? 1 : 0
        visible: row.mayReopen
        enabled: !row.review.isSettling
        text: qsTr("Undo")
        Accessible.name: qsTr("Undo: %1, %2").arg(row.what).arg(row.about)
        onClicked: row.review.reopen(row.offerId)
    }
}
