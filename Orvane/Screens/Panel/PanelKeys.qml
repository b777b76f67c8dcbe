// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What the keys do in the panel, along its foot.
Rectangle {
    id: foot

    required property PanelModel panel

    function said(hint: KeyHint): string {
        return hint.visible ? hint.text + ", " + KeyNames.text(hint.keys) + "; " : "";
    }

    height: 36
    color: Theme.inset
    Accessible.role: Accessible.StaticText
    Accessible.name: said(complete) + said(choose) + said(enter) + said(leave)

    component KeyHint: Row {
        id: hint

        property string keys
        property string text

        height: 36
        spacing: 6

        Repeater {
            model: hint.keys.split(" ")

            KeyCap {
                required property string modelData

                y: 9
                keys: modelData
            }
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            type: Label.Type.Caption
            text: hint.text
            color: Theme.ink2
            Accessible.ignored: true
        }
    }

    Rectangle {
        width: parent.width
        height: 1
        color: Theme.line
    }
    Row {
        x: Theme.space20
        spacing: Theme.space16

        KeyHint {
            id: complete
            visible: foot.panel.canComplete
            keys: "Tab"
            text: qsTr("Complete")
        }
        KeyHint {
            id: choose
            visible: foot.panel.rows.count > 0
            keys: "Up Down"
            text: qsTr("Choose")
        }
        KeyHint {
            id: enter
            visible: text !== ""
            keys: "Return"
            text: foot.panel.action
        }
    }
    KeyHint {
        id: leave
        anchors.right: parent.right
        anchors.rightMargin: Theme.space20
        keys: "Esc"
        text: qsTr("Leave")
    }
}
