// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A task over the window, which waits behind a scrim. Escape leaves, and the keyboard goes back where it was.
T.Popup {
    id: sheet

    property string title

    property Item before: null

    // A window that is no ApplicationWindow does not do this by itself. Who took the keyboard meanwhile keeps it.
    onAboutToShow: before = parent ? parent.Window.activeFocusItem : null
    onClosed: {
        if (before && (!before.Window.activeFocusItem || before.Window.activeFocusItem === before.Window.contentItem))
            before.forceActiveFocus(Qt.PopupFocusReason);
        before = null;
    }

    parent: T.Overlay.overlay
    x: parent ? Math.round((parent.width - width) / 2) : 0
    y: parent ? Math.max(Theme.space16, Math.min(104, Math.round((parent.height - height) / 2))) : 0
    implicitWidth: Math.max(320, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    padding: Theme.space24
    topPadding: Theme.space20
    bottomPadding: Theme.space20
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape

    enter: Transition {
        ParallelAnimation {
            NumberAnimation {
                property: "opacity"
                from: 0
                to: 1
                duration: Theme.sheetTime
                easing.type: Easing.OutQuad
            }
            NumberAnimation {
                property: "y"
                from: sheet.y + 4
                to: sheet.y
                duration: Theme.sheetTime
                easing.type: Easing.OutQuad
            }
        }
    }

    background: Panel {
        Accessible.role: Accessible.Dialog
        Accessible.name: sheet.title
    }
    T.Overlay.modal: Rectangle {
        color: Theme.scrim
    }
}
