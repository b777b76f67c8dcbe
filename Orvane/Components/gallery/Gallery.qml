// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

Window {
    id: gallery

    required property bool dark
    required property string page

    width: 1440
    height: 900
    visible: true
    title: "Orvane: components"
    color: Theme.content
    Component.onCompleted: Appearance.scheme = dark ? Appearance.Dark : Appearance.Light

    Column {
        x: 40; y: 40; spacing: 10
        Label { text: "Hello 09:10 – 10:35 ⌘N" }
        Label { text: "Title"; type: Label.Type.Title }
        Label { text: "1:24:36"; type: Label.Type.Elapsed }
        Row { spacing: 8; Icon { name: "play" } Icon { name: "settings"; color: Theme.accent } Icon { name: "spinner"; size: 14 } Icon { name: "dashed"; size: 8 } }
        Item { width: 1; height: 40 }
        Item { width: 300; height: 40
            Shadow { anchors.fill: parent }
            Rectangle { anchors.fill: parent; radius: 8; color: Theme.raised } }
        Item { width: 1; height: 80 }
        Item { width: 640; height: 300
            Shadow { anchors.fill: parent; level: 3; radius: 12 }
            Rectangle { anchors.fill: parent; radius: 12; color: Theme.raised } }
    }
}
