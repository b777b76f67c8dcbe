// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// Stands where the dot of a project would.
Icon {
    name: "dashed"
    size: 8
    color: Theme.none
}
