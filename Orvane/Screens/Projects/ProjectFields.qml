// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What is said of a project.
Item {
    id: fields

    required property ProjectsModel projects
    required property bool canEdit

    readonly property ProjectEditor editor: projects.editor
    readonly property int start: 40 + 72 + 16
    readonly property int margin: 32

    function take(): void {
        name.forceActiveFocus(Qt.OtherFocusReason);
        name.selectAll();
    }

    implicitHeight: 24 + 6 * 32 + 5 * 8
    height: implicitHeight

    Repeater {
        model: [qsTr("Name"), qsTr("Client"), qsTr("Colour"), qsTr("Rate"), qsTr("Estimate"), qsTr("Private")]

        Label {
            required property int index
            required property string modelData

            x: 40
            y: 12 + index * 40
            height: 32
            text: modelData
            color: Theme.ink2
            Accessible.ignored: true
        }
    }
    TextEntry {
        id: name
        x: fields.start
        y: 12
        width: parent.width - x - fields.margin
        enabled: fields.canEdit
        Accessible.name: qsTr("Name")
        wrong: fields.editor.wrongField === ProjectEditor.Name
        text: fields.editor.name
        onTextEdited: fields.editor.name = text
        onAccepted: fields.editor.save()
    }
    ClientButton {
        x: fields.start
        y: 12 + 40
        width: parent.width - x - fields.margin
        enabled: fields.canEdit
        editor: fields.editor
    }
    ColorChoice {
        x: fields.start - 6
        y: 12 + 80
        enabled: fields.canEdit
        colors: fields.editor.colors
        color: fields.editor.color
        onChosen: color => fields.editor.color = color
    }
    TextEntry {
        id: rate
        x: fields.start
        y: 12 + 120
        width: 120
        enabled: fields.canEdit
        Accessible.name: qsTr("Rate an hour")
        wrong: fields.editor.wrongField === ProjectEditor.Rate
        text: fields.editor.rate
        onTextEdited: fields.editor.rate = text
        onAccepted: fields.editor.save()
    }
    Label {
        anchors.left: rate.right
        anchors.leftMargin: 12
        anchors.verticalCenter: rate.verticalCenter
        text: fields.editor.currency === "" ? qsTr("an hour") : qsTr("%1 an hour").arg(fields.editor.currency)
        color: Theme.ink2
    }
    Label {
        id: billableLabel
        anchors.right: parent.right
        anchors.rightMargin: fields.margin
        anchors.verticalCenter: rate.verticalCenter
        text: qsTr("Billable")
        Accessible.ignored: true
    }
    Toggle {
        anchors.right: billableLabel.left
        anchors.rightMargin: 12
        anchors.verticalCenter: rate.verticalCenter
        enabled: fields.canEdit
        text: qsTr("Billable")
        checked: fields.editor.isBillable
        onToggled: fields.editor.isBillable = checked
    }
    TextEntry {
        id: estimate
        x: fields.start
        y: 12 + 160
        width: 120
        enabled: fields.canEdit
        placeholderText: qsTr("None")
        Accessible.name: qsTr("Estimate")
        wrong: fields.editor.wrongField === ProjectEditor.Estimate
        text: fields.editor.estimate
        onTextEdited: fields.editor.estimate = text
        onAccepted: fields.editor.save()
    }
    Toggle {
        id: secret
        x: fields.start
        y: 12 + 200 + 7
        enabled: fields.canEdit
        text: qsTr("Private")
        checked: fields.editor.isPrivate
        onToggled: fields.editor.isPrivate = checked
    }
    Label {
        anchors.left: secret.right
        anchors.leftMargin: 12
        anchors.verticalCenter: secret.verticalCenter
        width: parent.width - x - 8
        type: Label.Type.Small
        text: fields.editor.isPrivate ? qsTr("Only its members can track on it.") : qsTr("Everyone in the workspace can track on it.")
        color: Theme.ink2
    }
}
