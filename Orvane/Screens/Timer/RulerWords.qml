// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// What is written in an entry's block on the ruler, as far as its height allows.
Item {
    id: words

    required property var block

    LiveDot {
        id: live
        x: 10
        y: 8
        size: 6
        visible: words.block.isRunning && words.height >= 22
    }
    Label {
        x: live.visible ? 22 : 10
        y: words.height < 24 ? (words.height - height) / 2 : 3
        width: words.width - x - 6
        type: words.height < 24 ? Label.Type.Caption : Label.Type.Small
        saidByPeople: true
        text: words.block.title
        font.weight: Font.Medium
    }
    Label {
        x: 10
        y: 19
        width: words.width - x - 6
        visible: words.height > 40
        type: Label.Type.Caption
        saidByPeople: true
        text: words.block.places
        color: Theme.ink2
    }
}
