// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The client of a project, and the list to choose it from.
SelectButton {
    id: button

    required property ProjectEditor editor

    inEditor: true
    text: editor.client === "" ? qsTr("No client") : editor.client
    open: menu.visible
    Accessible.name: qsTr("Client: %1").arg(text)
    onClicked: menu.popup(button, 0, button.height + 4)

    readonly property MenuPanel menu: MenuPanel {
        id: menu
        title: qsTr("Clients")
        leastWidth: button.width

        Instantiator {
            model: [qsTr("No client"), ...button.editor.clients]
            delegate: MenuRow {
                required property int index
                required property string modelData

                text: modelData
                onTriggered: button.editor.chooseClient(index - 1)
            }
            onObjectAdded: (index, object) => menu.insertItem(index, object as MenuRow)
            onObjectRemoved: (index, object) => menu.removeItem(object as MenuRow)
        }
    }
}
