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

    implicitWidth: Math.ceil(name.x + name.implicitWidth + (rest.isWanted ? rest.implicitWidth : 0))
    implicitHeight: name.implicitHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: empty ? name.text : task === "" ? project : project + " › " + task

    Dot {
        anchors.verticalCenter: parent.verticalCenter
        empty: chip.empty
        shade: Theme.projectColor(String(chip.color))
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
    // Many have no task.
    Loader {
        id: rest

        readonly property bool isWanted: !chip.empty && chip.task !== ""

        x: name.x + name.width
        width: Math.min(implicitWidth, Math.max(0, chip.width - x))
        height: chip.height
        // The task gives way first, and is gone before it is only a letter.
        opacity: width < Math.min(implicitWidth, 36) ? 0 : 1
        onIsWantedChanged: isWanted ? setSource("TaskOfChip.qml", { chip: chip }) : source = ""
    }
}
