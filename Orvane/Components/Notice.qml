// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// What was done or failed, in one line, with one action. How long it stays is its owner's business.
Item {
    id: notice

    property string icon: "check"
    property color iconColor: Theme.accent
    property string text
    property string actionText
    property string actionKey

    signal action

    readonly property real around: Theme.space16 + mark.width + row.spacing + (button.visible ? row.spacing + button.width + Theme.space8 : Theme.space16)

    implicitWidth: Math.ceil(around + sentence.implicitWidth)
    implicitHeight: 40
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    Shadow {
        anchors.fill: parent
    }
    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusCard
        color: Theme.raised
    }
    Row {
        id: row

        x: Theme.space16
        height: parent.height
        spacing: Theme.space12

        Icon {
            id: mark

            anchors.verticalCenter: parent.verticalCenter
            name: notice.icon
            color: notice.iconColor
        }
        Label {
            id: sentence

            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, Math.max(0, notice.width - notice.around))
            text: notice.text
            Accessible.ignored: true
        }
        QuietButton {
            id: button

            anchors.verticalCenter: parent.verticalCenter
            visible: text !== ""
            accented: true
            text: notice.actionText
            keys: notice.actionKey
            onClicked: notice.action()
        }
    }
}
