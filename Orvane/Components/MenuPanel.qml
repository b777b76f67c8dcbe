// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T
import Orvane.Components

// A menu of MenuRows and MenuLines. Arrows choose, Return and Space take, Escape leaves and gives the keyboard back.
T.Menu {
    id: menu

    property int leastWidth: 160
    readonly property real widest: {
        let most = 0;
        for (let i = 0; i < count; ++i) {
            const row = itemAt(i);
            most = Math.max(most, row ? row.implicitWidth : 0);
        }
        return most;
    }

    property Item before: null

    // A window that is no ApplicationWindow does not do this by itself. Who took the keyboard meanwhile keeps it.
    onAboutToShow: before = parent ? parent.Window.activeFocusItem : null
    onClosed: {
        if (before && (!before.Window.activeFocusItem || before.Window.activeFocusItem === before.Window.contentItem))
            before.forceActiveFocus(Qt.PopupFocusReason);
        before = null;
    }

    implicitWidth: Math.max(leastWidth, widest + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    margins: Theme.space8
    padding: Theme.space4
    overlap: 1
    delegate: MenuRow {}

    enter: Transition {
        NumberAnimation {
            property: "opacity"
            from: 0
            to: 1
            duration: Theme.menuTime
            easing.type: Easing.OutQuad
        }
    }

    contentItem: ListView {
        implicitHeight: contentHeight
        model: menu.contentModel
        currentIndex: menu.currentIndex
        interactive: contentHeight > height
        clip: interactive
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.title
    }
    background: Item {
        Shadow {
            anchors.fill: parent
        }
        Rectangle {
            anchors.fill: parent
            radius: Theme.radiusCard
            color: Theme.raised
        }
    }
}
