// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// The name of a client or a tag while it is edited: Return saves, Escape leaves it as it was.
FocusScope {
    id: form

    required property NameList names

    implicitHeight: field.height + 8
    focus: true
    Accessible.role: Accessible.Form
    Accessible.name: names.isNew ? qsTr("New name") : qsTr("Rename")

    Component.onCompleted: {
        field.forceActiveFocus(Qt.OtherFocusReason);
        field.selectAll();
    }

    TextEntry {
        id: field
        x: 32
        y: 4
        width: Math.min(parent.width - x - 16, 480)
        focus: true
        placeholderText: qsTr("Name")
        error: form.names.problem
        text: form.names.text
        onTextEdited: form.names.text = text
        Keys.onReturnPressed: form.names.save()
        Keys.onEnterPressed: form.names.save()
        Keys.onEscapePressed: form.names.cancel()
    }
}
