// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A line of the switcher: a server and how its account stands, one of its workspaces, or what waits where one is signed out.
Item {
    id: row

    required property int index
    required property int kind
    required property string title
    required property var subtitle
    required property bool isLocal
    required property var isCurrent
    required property var standing
    required property var waiting
    required property var keys
    property bool lit: false

    readonly property bool isServer: kind === PlacesModel.Server
    readonly property bool isWorkspace: kind === PlacesModel.Workspace
    readonly property bool isCurrentPlace: isWorkspace && isCurrent
    readonly property bool canBeTaken: !isServer
    readonly property color ink: lit ? Theme.inkOnAccent : Theme.ink1
    readonly property int lead: isServer && index > 0 ? 13 : 0

    signal taken
    signal entered

    height: isServer ? 40 + lead : isWorkspace ? 32 : 36
    Accessible.role: isServer ? Accessible.StaticText : Accessible.MenuItem
    Accessible.name: isServer ? state.text === "" ? qsTr("%1, %2").arg(title).arg(subtitle) : qsTr("%1, %2, %3").arg(title).arg(subtitle).arg(state.text) : isWorkspace ? row.isCurrentPlace ? qsTr("%1, in use").arg(title) : title : qsTr("%1. Sign In…").arg(title)
    Accessible.onPressAction: if (row.canBeTaken)
        row.taken()

    Rectangle {
        visible: row.lead > 0
        x: 10
        y: 6
        width: parent.width - 20
        height: 1
        color: Theme.line
    }
    Rectangle {
        anchors.fill: parent
        visible: row.lit && row.isWorkspace
        radius: 5
        color: Theme.accentFill
    }
    HoverHandler {
        enabled: row.canBeTaken
        onHoveredChanged: if (hovered)
            row.entered()
    }
    TapHandler {
        enabled: row.isWorkspace
        onTapped: row.taken()
    }

    // A server.
    Item {
        visible: row.isServer
        y: row.lead
        width: parent.width
        height: 40

        Icon {
            x: 12
            anchors.verticalCenter: parent.verticalCenter
            name: row.isLocal ? "mac" : "server"
        }
        Column {
            x: 40
            width: parent.width - x - state.width - 20
            anchors.verticalCenter: parent.verticalCenter

            Label {
                type: Label.Type.Small
                width: parent.width
                saidByPeople: true
                font.weight: Font.DemiBold
                text: row.title
                Accessible.ignored: true
            }
            Label {
                type: Label.Type.Caption
                width: parent.width
                saidByPeople: true
                color: Theme.ink3
                text: row.subtitle ?? ""
                Accessible.ignored: true
            }
        }
        Row {
            id: state

            readonly property string text: row.standing === PlacesModel.Waiting ? qsTr("%1 waiting").arg(row.waiting) : row.standing === PlacesModel.SignedOut ? qsTr("Signed out") : row.standing === PlacesModel.Sent ? qsTr("All sent") : ""

            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            spacing: Theme.space4

            Icon {
                visible: row.standing === PlacesModel.Waiting || row.standing === PlacesModel.Sent
                name: row.standing === PlacesModel.Waiting ? "pending" : "check"
                color: row.standing === PlacesModel.Waiting ? Theme.warning : Theme.ink3
            }
            Label {
                type: Label.Type.Small
                text: state.text
                font.weight: row.standing === PlacesModel.Waiting ? Font.Medium : Font.Normal
                color: row.standing === PlacesModel.Waiting ? Theme.ink1 : Theme.ink2
                Accessible.ignored: true
            }
        }
    }
    // A workspace.
    Item {
        visible: row.isWorkspace
        anchors.fill: parent

        Rectangle {
            x: 10
            anchors.verticalCenter: parent.verticalCenter
            width: 20
            height: 20
            radius: 5
            color: row.lit ? Theme.pressOnAccent : row.isCurrentPlace ? Theme.ink2 : Theme.dark ? Theme.lifted : Theme.sunken

            Label {
                anchors.centerIn: parent
                type: Label.Type.Caption
                font.weight: Font.DemiBold
                color: row.lit ? Theme.inkOnAccent : row.isCurrentPlace ? Theme.chrome : Theme.ink1
                text: row.title.charAt(0).toUpperCase()
                Accessible.ignored: true
            }
        }
        Label {
            x: 40
            width: parent.width - x - tail.width - 20
            anchors.verticalCenter: parent.verticalCenter
            saidByPeople: true
            font.weight: row.isCurrentPlace ? Font.DemiBold : Font.Normal
            color: row.ink
            text: row.title
            Accessible.ignored: true
        }
        Row {
            id: tail

            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            spacing: 10

            Icon {
                anchors.verticalCenter: parent.verticalCenter
                visible: row.isCurrentPlace
                name: "check"
                color: row.lit ? Theme.inkOnAccent : Theme.accent
            }
            KeyCap {
                visible: keys !== ""
                keys: row.keys ?? ""
                color: row.lit ? "transparent" : Theme.control
                ink: row.lit ? Theme.inkOnAccent : Theme.ink2
                edge: row.lit ? Theme.lineOnAccent : Theme.line2
            }
        }
    }
    // What waits where one is signed out.
    Item {
        visible: row.kind === PlacesModel.Kept
        anchors.fill: parent

        Icon {
            x: 40
            anchors.verticalCenter: parent.verticalCenter
            name: row.waiting > 0 ? "pending" : "check"
            color: row.waiting > 0 ? Theme.warning : Theme.ink3
        }
        Label {
            type: Label.Type.Small
            x: 64
            anchors.verticalCenter: parent.verticalCenter
            text: row.title
            Accessible.ignored: true
        }
        ActionButton {
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Sign In…")
            ringed: row.lit
            onClicked: row.taken()
        }
    }
}
