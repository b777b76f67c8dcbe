// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A setting of the workspace that is typed: Return, or leaving the field, takes it over; Escape brings back what holds.
TextEntry {
    id: field

    required property WorkspaceRules rules
    required property int which
    required property string value

    function take(): void {
        if (text === value) {
            error = "";
            return;
        }
        error = rules.setText(which, text);
        if (error === "")
            text = Qt.binding(() => field.value);
    }

    enabled: rules.mayEdit
    text: value
    onEditingFinished: take()
    Keys.onEscapePressed: {
        error = "";
        text = Qt.binding(() => field.value);
    }
}
