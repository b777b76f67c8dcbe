// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The panel over whatever one works with: a sentence, what it means, and what completes it. As high as what it shows;
// where it stands is its owner's business. Whoever goes elsewhere has left it.
Window {
    id: window

    required property AppModel app
    required property PanelModel panel

    readonly property int mostLines: 8
    readonly property string problem: app.phase === AppModel.Failed ? app.problem : app.notices.isFailure ? app.notices.text : ""

    width: 640
    height: body.height
    flags: Qt.Dialog | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint
    title: qsTr("Quick Entry")
    color: Theme.raised
    onActiveChanged: if (!active && visible)
        window.panel.leave()

    Column {
        id: body
        width: parent.width

        Item {
            width: parent.width
            height: 60

            SentenceInput {
                id: input
                field: window.panel.field
                focus: true
                type: Label.Type.Entry
                textSize: Theme.t18
                markHeight: 32
                mentionStart: window.panel.mentionStart
                mentionEnd: window.panel.mentionEnd
                x: Theme.space20
                width: parent.width - 2 * x - (pending.visible ? pending.width + Theme.space12 : 0)
                height: parent.height
                onAccepted: window.panel.act()
                onCursorChanged: window.panel.cursor = cursor
                Keys.onPressed: event => {
                    event.accepted = true;
                    if (event.key === Qt.Key_Tab)
                        window.panel.complete();
                    else if (event.key === Qt.Key_Down)
                        window.panel.moveDown();
                    else if (event.key === Qt.Key_Up)
                        window.panel.moveUp();
                    else if (event.key === Qt.Key_Escape)
                        window.panel.leave();
                    else
                        event.accepted = event.key === Qt.Key_Backtab;
                }
            }
            Spinner {
                id: pending
                anchors.right: parent.right
                anchors.rightMargin: Theme.space20
                anchors.verticalCenter: parent.verticalCenter
                visible: window.panel.isPending
            }
        }
        Item {
            width: parent.width
            height: visible ? reading.height + 14 : 0
            visible: reading.saysSomething

            SentenceReading {
                id: reading

                readonly property bool saysSomething: plan !== "" || field.chips.length > 0 || field.span !== ""

                field: window.panel.field
                plan: window.panel.plan
                chipColor: Theme.dark ? Theme.hover : Theme.content
                x: Theme.space20
                width: parent.width - 2 * x
            }
        }
        Item {
            width: parent.width
            height: visible ? notes.height + 14 : 0
            visible: notes.height > 0

            SentenceNotes {
                id: notes
                field: window.panel.field
                x: Theme.space20
                width: parent.width - 2 * x
            }
        }
        Item {
            width: parent.width
            height: visible ? failure.height + 14 : 0
            visible: window.problem !== ""

            Icon {
                x: Theme.space20
                name: "warn"
                color: Theme.danger
            }
            Label {
                id: failure
                x: Theme.space20 + 24
                width: parent.width - x - Theme.space20
                type: Label.Type.Small
                text: window.problem
                color: Theme.danger
                elide: Text.ElideNone
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
            }
        }
        Rectangle {
            width: parent.width
            height: 1
            visible: lines.count > 0
            color: Theme.line
        }
        ListView {
            id: lines
            x: 6
            width: parent.width - 2 * x
            height: visible ? Math.min(count, window.mostLines) * 36 + topMargin + bottomMargin : 0
            visible: count > 0
            topMargin: 6
            bottomMargin: 6
            clip: true
            reuseItems: true
            // Each letter makes the rows anew: those out of sight are not worth it.
            cacheBuffer: 0
            boundsBehavior: Flickable.StopAtBounds
            highlightFollowsCurrentItem: false
            model: window.panel.rows
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Offers")

            delegate: PanelLine {
                required property int index

                width: lines.width
                isCurrent: index === window.panel.currentRow
                isChosen: isCurrent && window.panel.isRowChosen
                onTaken: window.panel.take(index)
            }
        }
        PanelKeys {
            panel: window.panel
            width: parent.width
        }
    }
    Rectangle {
        anchors.fill: parent
        color: "transparent"
        border.color: Theme.line2
    }

    Connections {
        target: window.panel
        function onCursorChanged() {
            if (input.cursor !== window.panel.cursor)
                input.cursor = window.panel.cursor;
        }
        function onCurrentChanged() {
            if (window.panel.currentRow >= 0)
                lines.positionViewAtIndex(window.panel.currentRow, ListView.Contain);
            else
                lines.positionViewAtBeginning();
        }
    }
}
