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
    Component.onCompleted: {
        Appearance.scheme = dark ? Appearance.Dark : Appearance.Light;
        // Not before: what changes colour does so little by little.
        content.source = page + "Page.qml";
    }

    Loader {
        id: content

        anchors.fill: parent
    }
}
