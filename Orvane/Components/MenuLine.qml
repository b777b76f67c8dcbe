// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// Parts a menu.
T.MenuSeparator {
    implicitWidth: 80
    implicitHeight: 9
    leftPadding: 6
    rightPadding: 6
    Accessible.role: Accessible.Separator

    contentItem: Item {
        Rectangle {
            y: 4
            width: parent.width
            height: 1
            color: Theme.line
        }
    }
}
