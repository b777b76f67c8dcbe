// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The sections, how what was recorded stands with the server, and the workspace.
Rectangle {
    id: sidebar

    required property AppModel app
    required property PlacesModel places
    // How much there is to settle.
    required property int waiting
    required property string section

    signal chosen(section: string)
    signal accountWanted
    // What waits for its user is asked for.
    signal settle

    color: Theme.chrome
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Sections")

    Rectangle {
        anchors.right: parent.right
        width: 1
        height: parent.height
        color: Theme.line
    }

    Column {
        x: Theme.space12
        y: 20
        width: parent.width - 2 * Theme.space12
        spacing: 2

        Repeater {
            model: [
                { section: "timer", text: qsTr("Timer"), icon: "timer", command: KeyTable.ShowTimer },
                { section: "review", text: qsTr("Review"), icon: "review", command: KeyTable.ShowReview },
                { section: "projects", text: qsTr("Projects"), icon: "projects", command: KeyTable.ShowProjects },
                { section: "settings", text: qsTr("Settings"), icon: "settings", command: KeyTable.ShowSettings }
            ]

            SectionRow {
                id: row

                required property var modelData

                width: parent.width
                text: modelData.text
                iconName: modelData.icon
                count: modelData.section === "review" ? sidebar.waiting : 0
                current: sidebar.section === modelData.section
                onClicked: sidebar.chosen(modelData.section)

                HoverHint {
                    isWanted: row.hovered
                    text: row.modelData.text
                    keys: sidebar.app.keys.caps[row.modelData.command]
                }
            }
        }
    }

    Column {
        anchors.bottom: parent.bottom
        anchors.bottomMargin: Theme.space12
        width: parent.width

        Rectangle {
            width: parent.width
            height: 1
            color: Theme.line
        }
        Item {
            width: 1
            height: Theme.space8
        }
        SyncLine {
            sync: sidebar.app.sync
            // What could not be opened is told where the entries would be.
            visible: sidebar.app.phase !== AppModel.Failed
            onSettle: sidebar.settle()
            x: Theme.space12
            width: parent.width - 2 * Theme.space12
        }
        WorkspaceLine {
            app: sidebar.app
            open: switcher.isOpen
            x: Theme.space12
            width: parent.width - 2 * Theme.space12
            onClicked: switcher.isWanted = true
        }
    }
    // Made when it is first opened.
    Loader {
        id: switcher

        objectName: "switcher"

        property bool isWanted: false
        readonly property bool isOpen: (item as Switcher)?.opened ?? false

        onIsWantedChanged: {
            if (!isWanted)
                return;
            if (status === Loader.Null)
                setSource("Switcher.qml", { app: sidebar.app, places: sidebar.places, parent: sidebar });
            (item as Switcher).open();
        }

        Connections {
            target: switcher.item as Switcher
            ignoreUnknownSignals: true

            function onClosed() {
                switcher.isWanted = false;
            }
            function onAccountWanted() {
                sidebar.accountWanted();
            }
        }
    }
}
