// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane
import Orvane.Components

// Servers, accounts and workspaces. Arrows choose, Return goes there, Escape leaves.
T.Popup {
    id: switcher

    required property AppModel app
    required property PlacesModel places
    // A name is typed for a new workspace.
    property bool naming: false
    property Item before: null

    signal accountWanted

    x: Theme.space12
    // The margin lifts it above the line that opens it.
    y: parent ? parent.height : 0
    bottomMargin: 60
    width: 336
    implicitHeight: column.implicitHeight + 2 * padding
    padding: 6
    focus: true
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside

    onAboutToShow: {
        before = parent ? parent.Window.activeFocusItem : null;
        naming = false;
        places.look();
        list.currentIndex = -1;
    }
    onOpened: list.take()
    onClosed: {
        if (before && (!before.Window.activeFocusItem || before.Window.activeFocusItem === before.Window.contentItem))
            before.forceActiveFocus(Qt.PopupFocusReason);
        before = null;
    }

    Connections {
        target: switcher.places

        function onCreated() {
            switcher.close();
        }
    }

    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Theme.menuTime
            easing.type: Easing.OutQuad
        }
    }
    background: Panel {
        level: 2
        radius: Theme.radiusCard
        Accessible.role: Accessible.PopupMenu
        Accessible.name: qsTr("Servers and Workspaces")
    }

    Column {
        id: column

        width: parent.width

        FocusScope {
            id: list

            property int currentIndex: -1

            function rowAt(index: int): SwitcherRow {
                return rows.itemAt(index) as SwitcherRow;
            }
            function take() {
                for (let index = 0; index < rows.count; ++index) {
                    if (rowAt(index).isCurrentPlace)
                        currentIndex = index;
                }
                forceActiveFocus(Qt.PopupFocusReason);
            }
            // The nearest row that can be taken in that direction; beyond the last one the actions follow.
            function step(by: int): bool {
                for (let index = currentIndex + by; index >= 0 && index < rows.count; index += by) {
                    if (rowAt(index).canBeTaken) {
                        currentIndex = index;
                        return true;
                    }
                }
                return false;
            }
            function choose(index: int) {
                switcher.close();
                switcher.places.choose(index);
            }

            width: parent.width
            height: Math.min(lines.height, switcher.parent ? switcher.parent.height - 200 : 600)
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Workspaces")
            Keys.onDownPressed: {
                if (!step(1))
                    create.forceActiveFocus(Qt.TabFocusReason);
            }
            Keys.onUpPressed: step(-1)
            Keys.onReturnPressed: choose(currentIndex)
            Keys.onEnterPressed: choose(currentIndex)

            Flickable {
                anchors.fill: parent
                contentHeight: lines.height
                clip: contentHeight > height
                boundsBehavior: Flickable.StopAtBounds

                Column {
                    id: lines

                    width: parent.width

                    Repeater {
                        id: rows

                        model: switcher.places
                        delegate: SwitcherRow {
                            width: lines.width
                            lit: list.currentIndex === index && list.activeFocus
                            onTaken: list.choose(index)
                            onEntered: {
                                list.currentIndex = index;
                                list.forceActiveFocus(Qt.MouseFocusReason);
                            }
                        }
                    }
                }
            }
        }
        Item {
            width: parent.width
            height: 13

            Rectangle {
                x: 10
                y: 6
                width: parent.width - 20
                height: 1
                color: Theme.line
            }
        }
        MenuRow {
            id: create

            width: parent.width
            implicitHeight: 32
            visible: !switcher.naming && switcher.places.placeName !== ""
            iconName: "plus"
            leftPadding: 13
            lit: activeFocus || hovered
            text: qsTr("Create Workspace…")
            onTriggered: {
                switcher.naming = true;
                name.text = "";
                name.forceActiveFocus();
            }
            Keys.onReturnPressed: triggered()
            Keys.onUpPressed: list.forceActiveFocus()
            Keys.onDownPressed: addServer.forceActiveFocus()

            Label {
                anchors.right: parent.right
                anchors.rightMargin: 10
                anchors.verticalCenter: parent.verticalCenter
                type: Label.Type.Small
                color: create.lit ? Theme.inkOnAccent : Theme.ink3
                text: qsTr("on %1").arg(switcher.places.placeName)
                Accessible.ignored: true
            }
        }
        Column {
            x: 10
            width: parent.width - 20
            visible: switcher.naming
            topPadding: Theme.space4
            bottomPadding: Theme.space8
            spacing: Theme.space8

            TextEntry {
                id: name

                width: parent.width
                placeholderText: qsTr("Name of the workspace")
                busy: switcher.places.isCreating
                error: switcher.places.creationProblem
                onAccepted: switcher.places.create(text)
                Keys.onEscapePressed: {
                    switcher.naming = false;
                    create.forceActiveFocus();
                }
            }
        }
        MenuRow {
            id: addServer

            width: parent.width
            implicitHeight: 32
            iconName: "server"
            leftPadding: 13
            lit: activeFocus || hovered
            text: qsTr("Add Server…")
            onTriggered: {
                switcher.close();
                switcher.app.askForSignIn("");
            }
            Keys.onReturnPressed: triggered()
            Keys.onUpPressed: create.forceActiveFocus()
            Keys.onDownPressed: {
                if (account.visible)
                    account.forceActiveFocus();
            }
        }
        MenuRow {
            id: account

            width: parent.width
            implicitHeight: visible ? 32 : 0
            visible: switcher.places.canSignOut
            iconName: "person"
            leftPadding: 13
            lit: activeFocus || hovered
            text: qsTr("Account and Sign Out…")
            onTriggered: {
                switcher.close();
                switcher.accountWanted();
            }
            Keys.onReturnPressed: triggered()
            Keys.onUpPressed: addServer.forceActiveFocus()
        }
    }
}
