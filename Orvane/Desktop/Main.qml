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

    readonly property bool isWide: width >= 1200

    width: 1440
    height: 900
    minimumWidth: 720
    minimumHeight: 450
    visible: true
    title: timer.isRunning ? qsTr("%1 – Orvane").arg(timer.description === "" ? qsTr("No description") : timer.description) : qsTr("Orvane")
    color: Theme.content

    Shortcut {
        sequences: ["Ctrl+Z"]
        onActivated: window.app.undo()
    }
    Shortcut {
        sequences: ["Ctrl+Shift+Z"]
        onActivated: window.app.redo()
    }
    Shortcut {
        sequences: ["Ctrl+Alt+Space"]
        onActivated: window.panel.want()
    }
    Row {
        anchors.fill: parent

        Sidebar {
            id: sidebar
            app: window.app
            places: window.places
            onSettle: window.timer.conflict.openFirst()
            width: window.isWide ? 216 : 192
            height: parent.height
        }
        TimerPage {
            id: timerPage
            app: window.app
            timer: window.timer
            isWide: window.isWide
            width: parent.width - sidebar.width
            height: parent.height
            focus: true
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
    WorkspaceKeys {
        places: window.places
    }
    NoticeLine {
        notices: window.app.notices
        onUndo: window.app.undo()
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 32 + Theme.space16
    }
}
