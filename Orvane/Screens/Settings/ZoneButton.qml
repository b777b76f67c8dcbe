// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane
import Orvane.Components

// The time zone, and the list of all zones to choose it from.
SelectButton {
    id: button

    required property TimeSettings time

    text: time.zone
    detail: time.zoneOffset
    open: list.visible
    Accessible.name: qsTr("Time zone: %1").arg(time.zone)
    onClicked: list.open()

    readonly property T.Popup list: T.Popup {
        id: list
        parent: button
        y: button.height + 4
        width: Math.max(button.width, 280)
        height: Math.min(options.count, 9) * 28 + 8 + 40
        padding: 4
        margins: Theme.space8
        focus: true
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
        onOpened: {
            query.clear();
            query.forceActiveFocus(Qt.PopupFocusReason);
            options.currentIndex = 0;
        }
        onClosed: button.forceActiveFocus(Qt.PopupFocusReason)

        function take(row: int): void {
            if (row < 0 || row >= options.count)
                return;
            button.time.setZone(options.model[row]);
            close();
        }

        background: Item {
            Shadow {
                anchors.fill: parent
            }
            Rectangle {
                anchors.fill: parent
                radius: Theme.radiusCard
                color: Theme.raised
                border.color: Theme.line2
            }
        }
        FocusScope {
            width: list.availableWidth
            height: list.availableHeight
            focus: true

            TextEntry {
                id: query
                width: parent.width
                placeholderText: qsTr("Find a zone")
                focus: true
                onTextEdited: options.currentIndex = 0
                onAccepted: list.take(options.currentIndex)
                Keys.onDownPressed: options.incrementCurrentIndex()
                Keys.onUpPressed: options.decrementCurrentIndex()
            }
            ListView {
                id: options
                y: 36
                width: parent.width
                height: parent.height - y
                clip: true
                boundsBehavior: Flickable.StopAtBounds
                model: list.visible ? button.time.zonesCalled(query.text) : []
                Accessible.role: Accessible.List
                Accessible.name: qsTr("Time zones")

                delegate: MenuRow {
                    required property int index
                    required property string modelData

                    width: options.width
                    text: modelData
                    lit: ListView.isCurrentItem || hovered
                    onTriggered: list.take(index)
                    onClicked: list.take(index)
                }
            }
        }
    }
}
