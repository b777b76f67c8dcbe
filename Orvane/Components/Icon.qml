// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// One of the drawings in icons/, in one colour. Says nothing to who cannot see it: what it stands for belongs into the
// accessible name of what it stands in.
Image {
    id: icon

    required property string name
    property color color: Theme.ink2
    property int size: 16

    source: name === "" ? "" : Pictures.icon(name, color)
    sourceSize.width: size
    sourceSize.height: size
    width: size
    height: size
    Accessible.ignored: true
}
