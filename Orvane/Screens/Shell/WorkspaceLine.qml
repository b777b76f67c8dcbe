// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane
import Orvane.Components

// Where one works: the workspace, and the server that keeps it. Pressed, it shows where else one could.
T.Button {
    id: line

    required property AppModel app
    property bool open: false

    readonly property string place: app.placeName
    readonly property string name: app.workspaceName === "" ? qsTr("No account") : app.workspaceName

    height: 44
    hoverEnabled: true
    Accessible.role: Accessible.ButtonMenu
    Accessible.name: place === "" ? name : qsTr("Workspace %1, %2").arg(name).arg(place)
    Accessible.onPressAction: line.clicked()
    Keys.onReturnPressed: line.clicked()
    Keys.onEnterPressed: line.clicked()

    background: Rectangle {
        radius: Theme.radiusControl
        color: line.open ? Theme.press : "transparent"

        Wash {
            lit: line.hovered && !line.open
            pressed: line.down
        }
        FocusRing {
            inside: true
            shown: line.visualFocus
        }
    }

    Rectangle {
        x: 6
        anchors.verticalCenter: parent.verticalCenter
        width: 24
        height: 24
        radius: Theme.radiusControl
        color: line.app.workspaceName === "" ? Theme.press : Theme.ink2

        Label {
            anchors.centerIn: parent
            type: Label.Type.Small
            text: line.app.workspaceName.charAt(0).toUpperCase()
            font.weight: Font.DemiBold
            color: Theme.chrome
            Accessible.ignored: true
        }
    }
    Column {
        anchors.left: parent.left
        anchors.leftMargin: 40
        anchors.right: arrows.left
        anchors.rightMargin: Theme.space8
        anchors.verticalCenter: parent.verticalCenter

        Label {
            type: Label.Type.Small
            width: parent.width
            saidByPeople: true
            text: line.name
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
        Label {
            type: Label.Type.Caption
            width: parent.width
            saidByPeople: true
            visible: text !== ""
            text: line.place
            color: line.open ? Theme.ink2 : Theme.ink3
            Accessible.ignored: true
        }
    }
    Icon {
        id: arrows

        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        name: "updown"
        color: line.open ? Theme.ink2 : Theme.ink3
    }
}
