// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Clients, or tags.
FocusScope {
    id: table

    required property ProjectsModel projects
    required property NameList names

    WantedLoader {
        id: form
        y: 8
        width: parent.width
        isWanted: table.names.isNew
        page: "NameForm.qml"
        properties: ({ names: table.names })
    }
    ListView {
        id: list
        anchors.top: form.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        clip: true
        focus: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        model: table.names
        currentIndex: -1
        highlightFollowsCurrentItem: false
        bottomMargin: Theme.space24
        Accessible.role: Accessible.List
        Accessible.name: table.names === table.projects.tags ? qsTr("Tags") : qsTr("Clients")
        Keys.onDownPressed: {
            currentIndex = Math.min(currentIndex + 1, count - 1);
            currentItem?.forceActiveFocus(Qt.TabFocusReason);
        }
        Keys.onUpPressed: {
            currentIndex = Math.max(currentIndex - 1, 0);
            currentItem?.forceActiveFocus(Qt.TabFocusReason);
        }

        delegate: NameLine {
            width: list.width
            projects: table.projects
            names: table.names
            isChosen: ListView.isCurrentItem && activeFocus
        }
    }
}
