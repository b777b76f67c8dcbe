// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The pages of settings, and the one that is looked at. A change holds at once.
FocusScope {
    id: section

    required property AppModel app
    required property TimerModel timer
    required property SettingsModel settings

    // All pages, in their order: the file that draws each, and what stands on it for who looks for it.
    readonly property var pages: [
        { page: "time", file: "TimePage.qml", title: qsTr("Time and Formats"), holds: qsTr("time zone, week starts on, clock, durations, date order") },
        { page: "appearance", file: "AppearancePage.qml", title: qsTr("Appearance"), holds: qsTr("colours, light, dark, motion, animation") },
        { page: "shortcuts", file: "ShortcutsPage.qml", title: qsTr("Shortcuts"), holds: qsTr("keys, keyboard, commands") },
        { page: "connect", file: "ConnectPage.qml", title: qsTr("Connect Agents"), holds: qsTr("Claude Code, Codex, commands to copy, disconnect") },
        { page: "sync", file: "SyncPage.qml", title: qsTr("Sync"), holds: qsTr("server, waiting changes, send now, offline") },
        { page: "workspace", file: "WorkspacePage.qml", title: qsTr("Workspace"), holds: qsTr("name, currency, rate, required, administrators, locked time") },
        { page: "account", file: "AccountPage.qml", title: qsTr("Account"), holds: qsTr("name, email, password, sessions, devices, sign out, export, my data, delete") }
    ]
    readonly property var found: pages.filter(each => (each.title + " " + each.holds).toLowerCase().includes(search.text.trim().toLowerCase()))

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Settings")

    onVisibleChanged: if (visible)
        settings.refresh()

    Connections {
        target: section.settings
        function onFindWanted() {
            search.forceActiveFocus(Qt.ShortcutFocusReason);
            search.selectAll();
        }
    }

    PageHead {
        id: head
        width: parent.width
        title: qsTr("Settings")
        timer: section.timer

        TextEntry {
            id: search
            width: 264
            height: 28
            iconName: "search"
            keys: section.app.keys.caps[KeyTable.FindHere]
            placeholderText: qsTr("Find a setting")
            Keys.onEscapePressed: clear()
            onAccepted: {
                if (section.found.length > 0)
                    section.settings.page = section.found[0].page;
            }
        }
    }
    Column {
        id: list
        anchors.top: head.bottom
        x: 12
        topPadding: 12
        width: 200 - 24
        spacing: 2
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Pages")

        Repeater {
            model: section.found

            SettingsRow {
                required property var modelData

                width: list.width
                text: modelData.title
                current: section.settings.page === modelData.page
                onClicked: section.settings.page = modelData.page
            }
        }
        Label {
            visible: section.found.length === 0
            x: 10
            width: list.width - 20
            type: Label.Type.Small
            wrapMode: Text.Wrap
            text: qsTr("No setting is called that.")
            color: Theme.ink2
        }
    }
    Rectangle {
        x: 199
        anchors.top: head.bottom
        anchors.bottom: keys.top
        width: 1
        color: Theme.line
    }
    Loader {
        id: content
        x: 200
        anchors.top: head.bottom
        anchors.bottom: keys.top
        width: parent.width - x
        focus: true

        readonly property string wanted: section.pages.find(each => each.page === section.settings.page)?.file ?? ""

        function update(): void {
            setSource(wanted, { app: section.app, settings: section.settings });
        }
        onWantedChanged: if (status !== Loader.Null)
            update()
        Component.onCompleted: update()
    }
    KeyBar {
        id: keys
        anchors.bottom: parent.bottom
        width: parent.width
        hints: section.settings.page === "shortcuts" && section.settings.shortcuts.recorded >= 0 ? [
            { keys: section.settings.shortcuts.taker >= 0 ? "Return" : "", text: qsTr("Use here") },
            { keys: "Backspace", text: qsTr("No keys") },
            { keys: "Esc", text: qsTr("Leave as it was") }
        ] : section.settings.page === "connect" ? [
            { keys: section.app.keys.caps[KeyTable.FindHere], text: qsTr("Find a setting") },
            { keys: "Tab", text: qsTr("Next") },
            { keys: "Return", text: qsTr("Connect") },
            { keys: "Ctrl+C", text: qsTr("Copy the command") }
        ] : [
            { keys: section.app.keys.caps[KeyTable.FindHere], text: qsTr("Find a setting") },
            { keys: "Tab", text: qsTr("Next") },
            { keys: "Left Right", text: qsTr("Choose") },
            { keys: section.app.keys.caps[KeyTable.Undo], text: qsTr("Undo") }
        ]
    }
}
