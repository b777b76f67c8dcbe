// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// An entry divided by percents: where each part goes, and its share.
FocusScope {
    id: pane

    required property TimerModel timer
    // Of the parts, which scroll where there are more.
    required property int mostHeight

    readonly property SplitModel split: timer.split
    readonly property int shareX: width - 20 - 8 - 48 - 8 - 76

    function take() {
        const first = rows.itemAt(0) as SplitPartRow;
        if (first)
            first.take();
    }
    // Where the keyboard goes stays in sight.
    function show(row: Item) {
        scroll.contentY = Math.max(Math.min(scroll.contentY, row.y), row.y + row.height - scroll.height);
    }

    implicitHeight: sum.y + sum.height
    focus: visible

    Item {
        id: bar
        width: parent.width
        height: 32

        Repeater {
            model: pane.split.parts

            SplitCut {
                split: pane.split
                count: pane.split.parts.count
                whole: bar.width
                height: bar.height
            }
        }
    }
    Item {
        id: head
        y: bar.height + Theme.space12
        width: parent.width
        height: 20

        Label {
            type: Label.Type.Caption
            text: qsTr("Goes to")
            color: Theme.ink3
        }
        Label {
            x: 188 + 8
            type: Label.Type.Caption
            text: qsTr("Description")
            color: Theme.ink3
        }
        Label {
            x: pane.shareX
            width: 76
            type: Label.Type.Caption
            horizontalAlignment: Text.AlignRight
            text: qsTr("Share")
            color: Theme.ink3
        }
        Label {
            x: pane.shareX + 76 + 8
            width: 48
            type: Label.Type.Caption
            horizontalAlignment: Text.AlignRight
            text: qsTr("Time")
            color: Theme.ink3
        }
    }
    Flickable {
        id: scroll
        // Rings around what has the keyboard stand out of the rows.
        x: -4
        y: head.y + head.height
        width: parent.width + 8
        height: Math.min(contentHeight, Math.max(80, pane.mostHeight))
        contentHeight: list.height
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        interactive: contentHeight > height

        Column {
            id: list
            x: 4
            width: pane.width

            Repeater {
                id: rows
                model: pane.split.parts

                SplitPartRow {
                    timer: pane.timer
                    width: list.width
                    shareX: pane.shareX
                    onActiveFocusChanged: if (activeFocus)
                        pane.show(this)
                }
            }
        }
    }
    Item {
        id: sum
        y: scroll.y + scroll.height
        width: parent.width
        height: 40

        QuietButton {
            id: add
            x: -8
            anchors.verticalCenter: parent.verticalCenter
            accented: true
            iconName: "plus"
            text: qsTr("Add Part")
            keys: "Ctrl+Return"
            enabled: pane.split.canAddPart
            onClicked: pane.split.addPart()
        }
        Label {
            anchors.left: add.right
            anchors.leftMargin: Theme.space8
            anchors.right: parent.right
            anchors.rightMargin: pane.width - pane.shareX + 28 + 16
            height: parent.height
            type: Label.Type.Small
            horizontalAlignment: Text.AlignRight
            text: qsTr("The part below gives way")
            color: Theme.ink2
        }
        Label {
            x: pane.shareX
            width: 76 - 31
            height: parent.height
            horizontalAlignment: Text.AlignRight
            font.weight: Font.Medium
            text: qsTr("100%")
        }
        Label {
            x: pane.shareX + 76 + 8 + 48 - width
            height: parent.height
            font.weight: Font.Medium
            text: pane.split.total
        }
    }
}
