// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A text in one of the sizes there are: Label { type: Label.Type.Small; text: … }. Weight and colour are set as usual
// (font.weight: Font.Medium; color: Theme.ink2); titles and figures are semi-bold by themselves. A label of one line is
// cut with an ellipsis where it gets a width.
Text {
    id: label

    enum Type {
        Caption, // 11 on 16: axes, keys
        Small, // 12 on 16: secondary
        Body, // 13 on 20
        Title, // 15 on 20
        Entry, // 18 on 28: the sentence of the panel
        Figures, // 20 on 28
        Elapsed, // 24 on 32
        Display // 28 on 36
    }

    property int type: Label.Type.Body
    // A name or a description, which may be longer than any room for it.
    property bool saidByPeople: false

    color: Theme.ink1
    font.family: Theme.family
    font.pixelSize: Theme.typeSizes[type]
    font.weight: type === Label.Type.Title || type >= Label.Type.Figures ? Font.DemiBold : Font.Normal
    font.letterSpacing: Theme.typeSpacings[type]
    lineHeight: Theme.typeLines[type]
    lineHeightMode: Text.FixedHeight
    verticalAlignment: Text.AlignVCenter
    elide: Text.ElideRight
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
