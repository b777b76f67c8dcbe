// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// Whether all is saved and sent, and what waits.
Item {
    id: line

    required property SyncStatus sync

    readonly property bool needsAttention: sync.kind === SyncStatus.Offline || sync.kind === SyncStatus.Conflict || sync.kind === SyncStatus.HeldBack || sync.kind === SyncStatus.SessionEnded

    readonly property bool isSettled: sync.kind !== SyncStatus.Conflict

    // What waits for its user is asked for.
    signal settle

    height: sync.subtitle === "" ? 32 : 44
    activeFocusOnTab: !isSettled
    Keys.onReturnPressed: event => {
        event.accepted = !isSettled;
        if (event.accepted)
            settle();
    }
    Accessible.role: isSettled ? Accessible.StaticText : Accessible.Button
    Accessible.onPressAction: if (!isSettled)
        settle()
    Accessible.name: sync.subtitle === "" ? sync.title : qsTr("%1. %2").arg(sync.title).arg(sync.subtitle)

    HoverHandler {
        id: hover
        enabled: !line.isSettled
    }
    TapHandler {
        enabled: !line.isSettled
        onTapped: line.settle()
    }
    Wash {
        lit: hover.hovered && !line.isSettled
    }
    FocusRing {
        shown: line.activeFocus
    }
    Icon {
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        visible: line.sync.kind !== SyncStatus.Loading
        name: line.sync.kind === SyncStatus.Conflict ? "fork" : line.needsAttention ? "offline" : line.sync.kind === SyncStatus.Sending ? "pending" : "synced"
        color: line.needsAttention ? Theme.warning : Theme.ink3
    }
    Spinner {
        x: 11
        anchors.verticalCenter: parent.verticalCenter
        visible: line.sync.kind === SyncStatus.Loading
        color: Theme.ink3
    }
    Column {
        anchors.left: parent.left
        anchors.leftMargin: 36
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter

        Label {
            type: Label.Type.Small
            width: parent.width
            text: line.sync.title
            font.weight: line.needsAttention ? Font.Medium : Font.Normal
            color: line.needsAttention ? Theme.ink1 : Theme.ink2
            Accessible.ignored: true
        }
        Label {
            type: Label.Type.Caption
            width: parent.width
            visible: text !== ""
            text: line.sync.subtitle
            color: Theme.ink3
            Accessible.ignored: true
        }
    }
}
