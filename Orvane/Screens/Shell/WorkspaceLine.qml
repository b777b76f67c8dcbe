// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Where one works: the workspace, and the server that keeps it.
Item {
    id: line

    required property AppModel app

    height: 44
    visible: app.workspaceName !== ""
    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("Workspace %1, %2").arg(app.workspaceName).arg(app.placeName)

    Rectangle {
        x: 6
        anchors.verticalCenter: parent.verticalCenter
        width: 24
        height: 24
        radius: Theme.radiusControl
        color: Theme.ink2

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
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter

        Label {
            type: Label.Type.Small
            width: parent.width
            saidByPeople: true
            text: line.app.workspaceName
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
        Label {
            type: Label.Type.Caption
            width: parent.width
            saidByPeople: true
            text: line.app.placeName
            color: Theme.ink3
            Accessible.ignored: true
        }
    }
}
