// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// What a control does, after a moment beside it, with its key.
T.ToolTip {
    id: hint

    property string keys

    x: parent ? Math.round((parent.width - implicitWidth) / 2) : 0
    y: parent ? parent.height + 6 : 0
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: 28
    leftPadding: 10
    rightPadding: 10
    margins: Theme.space8
    delay: 500
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent

    contentItem: Row {
        spacing: Theme.space8

        Label {
            anchors.verticalCenter: parent.verticalCenter
            type: Label.Type.Small
            text: hint.text
            // The control says the same.
            Accessible.ignored: true
        }
        KeyCap {
            anchors.verticalCenter: parent.verticalCenter
            visible: hint.keys !== ""
            keys: hint.keys
        }
    }
    background: Item {
        Shadow {
            anchors.fill: parent
            radius: Theme.radiusControl
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusControl
            color: Theme.raised
        }
    }
}
