// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// The hint of the control it stands in, made only while it is wanted: a window has many of these.
Loader {
    id: place

    required property bool isWanted
    required property string text
    required property string keys

    active: isWanted && text !== ""
    // From here rather than from where it stands.
    source: Qt.resolvedUrl("Hint.qml")
    onLoaded: {
        const hint = item as Hint;
        hint.parent = place.parent;
        hint.text = place.text;
        hint.keys = place.keys;
        hint.visible = true;
    }
}
