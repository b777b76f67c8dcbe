// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// A rule of the workspace that holds or does not, and what it is.
Item {
    id: rule

    required property WorkspaceRules rules
    required property int which
    required property bool holds
    required property string text

    width: 44 + label.implicitWidth
    height: 20

    Toggle {
        id: toggle
        y: 1
        enabled: rule.rules.mayEdit
        text: rule.text
        checked: rule.holds
        onToggled: {
            rule.rules.setRule(rule.which, checked);
            // What holds is what the model says.
            checked = Qt.binding(() => rule.holds);
        }
    }
    Label {
        id: label
        x: 44
        text: rule.text
        color: rule.rules.mayEdit ? Theme.ink1 : Theme.ink2
        Accessible.ignored: true

        TapHandler {
            enabled: rule.rules.mayEdit
            onTapped: toggle.press()
        }
    }
}
