// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A key or keys pressed together, as this computer's keyboard has them: KeyCap { keys: "Ctrl+N" }
Rectangle {
    id: cap

    property string keys
    property color ink: Theme.ink2
    property color edge: Theme.line2

    implicitWidth: Math.max(18, Math.ceil(label.implicitWidth) + 10)
    implicitHeight: 18
    radius: Theme.radiusBlock
    color: Theme.control
    border.width: 1
    border.color: edge

    Label {
        id: label

        anchors.centerIn: parent
        type: Label.Type.Caption
        font.weight: Font.Medium
        font.letterSpacing: 0.22
        color: cap.ink
        text: KeyNames.text(cap.keys)
        Accessible.ignored: true
    }
}
