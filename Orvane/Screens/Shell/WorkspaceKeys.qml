// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane

// The keys that go over to the first nine workspaces.
Repeater {
    id: keys

    required property PlacesModel places

    model: 9
    delegate: Item {
        id: key

        required property int index

        Shortcut {
            sequences: ["Ctrl+Alt+" + (key.index + 1)]
            onActivated: keys.places.chooseNumber(key.index + 1)
        }
    }
}
