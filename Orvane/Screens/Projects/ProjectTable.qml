// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// The projects below their clients; the one that is edited opens in its place, a new one above all. (A list of bound
// components has no header in Qt 6.4.)
FocusScope {
    id: table

    required property ProjectsModel projects

    readonly property ProjectColumns columns: ProjectColumns {
        tableWidth: table.width
    }

    // The keyboard leaves upwards.
    signal leftUpwards

    function enter(): void {
        list.forceActiveFocus(Qt.TabFocusReason);
        if (list.currentIndex < 0)
            list.step(1);
        list.currentItem?.forceActiveFocus(Qt.TabFocusReason);
    }

    // Once what was opened or closed has its height.
    Timer {
        id: entering
        interval: 0
        onTriggered: table.enter()
    }
    Timer {
        id: revealing
        interval: 0
        onTriggered: list.reveal()
    }
    Timer {
        id: opening
        interval: 0
        onTriggered: {
            if (list.itemAtIndex(list.opened)?.height < list.height)
                list.positionViewAtIndex(list.opened, ListView.Contain);
        }
    }
    Item {
        id: heads
        y: 4
        width: parent.width
        height: 32

        Label {
            x: 16
            anchors.verticalCenter: parent.verticalCenter
            type: Label.Type.Caption
            text: qsTr("Project")
            color: Theme.ink3
        }
        Repeater {
            model: [
                { text: qsTr("Tasks"), right: table.columns.tasksRight },
                { text: qsTr("This week"), right: table.columns.weekRight },
                { text: qsTr("Estimate"), right: table.columns.estimateRight },
                { text: qsTr("Rate an hour"), right: table.columns.rateRight }
            ]

            Label {
                required property var modelData

                x: heads.width - modelData.right - width
                y: 8
                type: Label.Type.Caption
                text: modelData.text
                color: Theme.ink3
            }
        }
    }
    WantedLoader {
        id: form
        y: heads.y + heads.height
        width: parent.width
        isWanted: table.projects.editor.isNew
        page: "ProjectForm.qml"
        properties: ({ projects: table.projects, columns: table.columns })
        // The keyboard goes to the list, unless another project is edited now.
        onIsWantedChanged: if (!isWanted && table.projects.editor.projectId === "")
            entering.start()
    }
    ListView {
        id: list
        anchors.top: form.bottom
        anchors.topMargin: form.height > 0 ? 8 : 0
        anchors.bottom: parent.bottom
        width: parent.width
        clip: true
        focus: true
        activeFocusOnTab: true
        boundsBehavior: Flickable.StopAtBounds
        model: table.projects.rows
        currentIndex: -1
        highlightFollowsCurrentItem: false
        // The editor's frame is drawn around it.
        bottomMargin: Theme.space24
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Projects")

        function step(by: int): void {
            let next = currentIndex + by;
            while (next >= 0 && next < count && (itemAtIndex(next) as ProjectLineData)?.kind === ProjectRows.Client)
                next += by;
            if (next < 0) {
                table.leftUpwards();
                return;
            }
            if (next >= count)
                return;
            currentIndex = next;
            positionViewAtIndex(next, ListView.Contain);
            currentItem?.forceActiveFocus(Qt.TabFocusReason);
        }

        Keys.onUpPressed: step(-1)
        Keys.onDownPressed: step(1)

        // What has the keyboard is seen, and of an editor as much as there is room for.
        readonly property Item focused: table.Window.activeFocusItem

        function reveal(): void {
            if (!focused || !activeFocus)
                return;
            const top = focused.mapToItem(contentItem, 0, 0).y;
            if (top < contentY + 44)
                contentY = Math.max(originY, top - 44);
            else if (top + focused.height > contentY + height - 16)
                contentY = top + focused.height - height + 16;
            // All answers are seen.
            const line = itemAtIndex(opened);
            if (line && table.projects.removal.itemId !== "" && table.projects.removal.itemId === table.projects.editor.projectId)
                contentY = Math.max(contentY, line.y + line.height - height + 8);
        }
        property int opened: -1

        onFocusedChanged: revealing.start()
        onContentHeightChanged: revealing.start()

        delegate: ProjectLine {
            projects: table.projects
            columns: table.columns
            width: list.width
            isChosen: ListView.isCurrentItem && activeFocus
            onOpened: {
                list.opened = index;
                opening.start();
            }
            onClosed: {
                // Another one that is edited now has the keyboard.
                if (projects.editor.projectId !== "" || projects.editor.isNew)
                    return;
                list.currentIndex = index;
                forceActiveFocus(Qt.OtherFocusReason);
            }
        }
    }
}
