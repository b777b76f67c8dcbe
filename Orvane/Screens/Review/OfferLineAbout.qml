// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// The entry of an offer in one line: when, where and what for.
Item {
    id: about

    required property string times
    required property string place
    required property string projectColor
    required property string tags
    required property string billing

    readonly property string what: place + after(tags) + after(billing)
    readonly property string said: times + ", " + what

    function after(text: string): string {
        return text === "" ? "" : " · " + text;
    }

    implicitHeight: 18

    Row {
        id: row
        height: parent.height
        spacing: 6

        Label {
            height: parent.height
            type: Label.Type.Small
            text: about.times
            color: Theme.ink2
            Accessible.ignored: true
        }
        Label {
            height: parent.height
            type: Label.Type.Small
            text: "·"
            color: Theme.ink3
            Accessible.ignored: true
        }
        Dot {
            anchors.verticalCenter: parent.verticalCenter
            empty: about.projectColor === ""
            shade: about.projectColor === "" ? Theme.none : Theme.projectColor(about.projectColor)
        }
    }
    Label {
        anchors.left: row.right
        anchors.leftMargin: 6
        anchors.right: parent.right
        height: parent.height
        type: Label.Type.Small
        saidByPeople: true
        text: about.what
        color: Theme.ink2
        Accessible.ignored: true
    }
}
