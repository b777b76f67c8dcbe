// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The window: where one is at the left, what one does there beside it.
Window {
    id: window

    required property AppModel app
    required property TimerModel timer
    required property SignInModel signIn
    required property PlacesModel places
    required property PanelModel panel
    required property ReviewModel review
    required property ProjectsModel projects
    required property SettingsModel settings

    readonly property bool isWide: width >= 1200
    // "timer", "review", "projects" or "settings".
    property string section: "timer"

    function show(which: string): void {
        section = which;
        if (which === "timer")
            timerPage.forceActiveFocus(Qt.OtherFocusReason);
    }

    width: 1440
    height: 900
    minimumWidth: 720
    minimumHeight: 450
    visible: true
    title: timer.isRunning ? qsTr("%1 – Orvane").arg(timer.description === "" ? qsTr("No description") : timer.description) : qsTr("Orvane")
    color: Theme.content

    Binding {
        target: Appearance
        property: "scheme"
        value: [Appearance.System, Appearance.Light, Appearance.Dark][window.app.choices.scheme]
    }
    Binding {
        target: Appearance
        property: "keepsStill"
        value: window.app.choices.keepsStill
    }

    CommandShortcut {
        table: window.app.keys
        command: KeyTable.Undo
        onActivated: window.app.undo()
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.Redo
        onActivated: window.app.redo()
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.OpenPanel
        onActivated: window.panel.want()
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.ShowTimer
        onActivated: window.show("timer")
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.ShowReview
        onActivated: window.show("review")
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.ShowProjects
        onActivated: window.show("projects")
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.ShowSettings
        onActivated: window.show("settings")
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.NewEntry
        onActivated: {
            window.show("timer");
            timerPage.takeField();
        }
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.StartOrStop
        onActivated: window.timer.startOrStop()
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.ContinueLast
        onActivated: window.timer.continueLast()
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.EditRunning
        onActivated: {
            window.show("timer");
            window.timer.editRunning();
        }
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.NewProject
        onActivated: {
            window.show("projects");
            window.projects.beginNewProject();
        }
    }
    CommandShortcut {
        table: window.app.keys
        command: KeyTable.FindHere
        onActivated: {
            if (window.section === "projects")
                window.projects.find();
            else if (window.section === "settings")
                window.settings.find();
        }
    }

    Sidebar {
        id: sidebar
        app: window.app
        places: window.places
        waiting: window.review.waiting
        section: window.section
        width: window.isWide ? 216 : 192
        height: parent.height
        onChosen: which => window.show(which)
        onSettle: {
            window.show("timer");
            window.timer.conflict.openFirst();
        }
        onAccountWanted: {
            window.settings.page = "account";
            window.show("settings");
        }
    }
    Item {
        x: sidebar.width
        width: parent.width - x
        height: parent.height

        TimerPage {
            id: timerPage
            app: window.app
            timer: window.timer
            isWide: window.isWide
            anchors.fill: parent
            visible: window.section === "timer"
            focus: true
        }
        SectionLoader {
            id: reviewSection
            anchors.fill: parent
            isCurrent: window.section === "review"
            page: "ReviewPage.qml"
            properties: ({ app: window.app, timer: window.timer, review: window.review })
        }
        SectionLoader {
            anchors.fill: parent
            isCurrent: window.section === "projects"
            page: "ProjectsPage.qml"
            properties: ({ app: window.app, timer: window.timer, projects: window.projects })
        }
        SectionLoader {
            anchors.fill: parent
            isCurrent: window.section === "settings"
            page: "SettingsPage.qml"
            properties: ({ app: window.app, timer: window.timer, settings: window.settings })
        }
    }

    Connections {
        target: reviewSection.item as ReviewPage
        ignoreUnknownSignals: true

        function onEditing(inField: bool) {
            window.show("timer");
            if (inField)
                timerPage.takeField();
        }
        function onConnectWanted() {
            window.settings.page = "connect";
            window.show("settings");
        }
    }

    // Above everything else while somebody has to sign in.
    Loader {
        id: signInLoader

        readonly property bool isWanted: window.signIn.isShown

        anchors.fill: parent
        focus: isWanted
        onIsWantedChanged: {
            if (isWanted) {
                setSource("SignInPage.qml", { signIn: window.signIn });
            } else {
                source = "";
                timerPage.forceActiveFocus(Qt.OtherFocusReason);
            }
        }
    }
    SheetLoader {
        isWanted: window.settings.agents.asking.isOpen
        page: "AgentAskingSheet.qml"
        properties: ({ asking: window.settings.agents.asking })
    }
    WorkspaceKeys {
        places: window.places
    }
    NoticeLine {
        notices: window.app.notices
        undoKeys: window.app.keys.caps[KeyTable.Undo]
        onUndo: window.app.undo()
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 32 + Theme.space16
    }
}
