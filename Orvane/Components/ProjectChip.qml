// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// A project, and a task of it: ProjectChip { color: …; project: "Atlas API"; task: "Backend" }. The colour is the server's
// or already the theme's; without a project it says so.
Item {
    id: chip

    property color color: Theme.none
    property string project
    property string task
    property int type: Label.Type.Body
    property color ink: Theme.ink1
    property color taskInk: Theme.ink2
    readonly property bool empty: project === ""

    implicitWidth: Math.ceil(name.x + name.implicitWidth + (rest.visible ? rest.implicitWidth : 0))
    implicitHeight: name.implicitHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: empty ? name.text : task === "" ? project : project + rest.text

    Dot {
        anchors.verticalCenter: parent.verticalCenter
        empty: chip.empty
        color: Theme.projectColor(String(chip.color))
    }
    Label {
        id: name

        saidByPeople: true
        x: 16
        width: Math.min(implicitWidth, Math.max(0, chip.width - x))
        height: chip.height
        type: chip.type
        text: chip.empty ? qsTr("No project") : chip.project
        color: chip.empty ? Theme.ink2 : chip.ink
        Accessible.ignored: true
    }
    Label {
        id: rest

        saidByPeople: true
        x: name.x + name.width
        width: Math.min(implicitWidth, Math.max(0, chip.width - x))
        height: chip.height
        visible: !chip.empty && chip.task !== ""
        // The task gives way first, and is gone before it is only a letter.
        opacity: width < Math.min(implicitWidth, 36) ? 0 : 1
        type: chip.type
        text: " › " + chip.task
        color: chip.taskInk
        Accessible.ignored: true
    }
}
