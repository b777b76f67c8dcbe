// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// An offer under the rows that it concerns: one sentence, one action with its key, one way out. On amber where something is
// not as it should be (`warns`).
Rectangle {
    id: offer

    property string icon
    property string text
    property string actionText
    property string actionKey
    property string dismissText
    property bool warns: false

    signal action
    signal dismissed

    implicitWidth: 480
    implicitHeight: 40
    radius: Theme.radiusCard
    color: warns ? Theme.warningTint : Theme.chrome
    Accessible.role: Accessible.Grouping
    Accessible.name: text

    Icon {
        id: mark

        x: Theme.space16
        anchors.verticalCenter: parent.verticalCenter
        visible: offer.icon !== ""
        name: offer.icon
        color: offer.warns ? Theme.warning : Theme.ink2
    }
    Label {
        anchors.left: mark.visible ? mark.right : parent.left
        anchors.leftMargin: mark.visible ? Theme.space8 : Theme.space16
        anchors.right: buttons.left
        anchors.rightMargin: Theme.space12
        anchors.verticalCenter: parent.verticalCenter
        text: offer.text
    }
    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: Theme.space8
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.space8

        ActionButton {
            visible: text !== ""
            text: offer.actionText
            keys: offer.actionKey
            onClicked: offer.action()
        }
        QuietButton {
            visible: text !== ""
            text: offer.dismissText
            onClicked: offer.dismissed()
        }
    }
}
