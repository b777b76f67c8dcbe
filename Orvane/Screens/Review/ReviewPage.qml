// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What waits to be settled, offer by offer.
FocusScope {
    id: page

    required property AppModel app
    required property TimerModel timer
    required property ReviewModel review

    readonly property bool isWide: width >= 984
    readonly property bool isEmpty: review.waiting === 0

    // What is proposed stands where it can be changed: in the timer's field, or in the editor of its entry.
    signal editing(inField: bool)
    signal connectWanted

    function edit(id: string): void {
        if (!review.edit(id))
            return;
        editing(page.timer.editor.entryId === "");
    }

    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Review")

    PageHead {
        id: head
        width: parent.width - (rail.visible ? rail.width : 0)
        title: qsTr("Review")
        timer: page.timer
    }
    ListView {
        id: list
        objectName: "offers"
        anchors.top: head.bottom
        anchors.topMargin: Theme.space16
        anchors.bottom: keys.top
        x: Theme.space24
        width: Math.min(head.width - 2 * x, 1176)
        clip: true
        focus: true
        activeFocusOnTab: true
        visible: !page.isEmpty
        spacing: Theme.space8
        boundsBehavior: Flickable.StopAtBounds
        model: page.review.offers
        currentIndex: 0
        highlightFollowsCurrentItem: false
        Accessible.role: Accessible.List
        Accessible.name: qsTr("To settle")

        function choose(row: int): void {
            if (row < 0 || row >= count)
                return;
            currentIndex = row;
            positionViewAtIndex(row, ListView.Contain);
            currentItem?.forceActiveFocus(Qt.TabFocusReason);
        }
        function currentId(): string {
            return (currentItem as OfferCard)?.offerId ?? "";
        }
        // One that went takes nobody's place: the next one is looked at.
        onCountChanged: if (count > 0 && (currentIndex < 0 || currentIndex >= count))
            currentIndex = count - 1

        Keys.onUpPressed: choose(currentIndex - 1)
        Keys.onDownPressed: choose(currentIndex + 1)
        Keys.onPressed: event => {
            const chord = KeyNames.chord(event.key, event.modifiers);
            // A key that is held answers once: the next offer has not been read.
            const command = page.app.keys.offerCommand(chord);
            event.accepted = true;
            if (command >= 0 && event.isAutoRepeat)
                return;
            if (command === KeyTable.TakeOffer)
                page.review.accept(currentId());
            else if (command === KeyTable.EditOffer)
                page.edit(currentId());
            else if (command === KeyTable.DismissOffer)
                page.review.decline(currentId());
            else if (event.key >= Qt.Key_1 && event.key <= Qt.Key_9 && event.modifiers === Qt.NoModifier)
                choose(event.key - Qt.Key_1);
            else
                event.accepted = false;
        }

        delegate: OfferCard {
            width: list.width
            review: page.review
            keys: page.app.keys
            isCurrent: ListView.isCurrentItem
            onChosen: list.choose(index)
            onEditWanted: page.edit(offerId)
        }
        bottomMargin: below.visible ? below.height + 2 * Theme.space24 : Theme.space16
    }
    // Below the offers where there is no room beside them.
    SettledPane {
        id: below
        parent: list.contentItem
        y: list.originY + list.contentHeight + Theme.space24
        width: list.width
        visible: !page.isWide && page.review.settled.count > 0
        review: page.review
    }
    ReviewEmpty {
        anchors.top: head.bottom
        anchors.bottom: keys.top
        x: Theme.space24
        width: list.width
        visible: page.isEmpty
        review: page.review
        showsSettled: !page.isWide
        onConnectWanted: page.connectWanted()
    }
    ReviewRail {
        id: rail
        anchors.right: parent.right
        width: 296
        height: parent.height
        visible: page.isWide
        review: page.review
        timer: page.timer
    }
    KeyBar {
        id: keys
        anchors.bottom: parent.bottom
        width: head.width
        hints: page.isEmpty ? [
            { keys: page.app.keys.caps[KeyTable.Undo], text: qsTr("Undo") }
        ] : [
            { keys: "Up Down", text: qsTr("Offer") },
            { keys: "1–9", text: qsTr("Jump to") },
            { keys: page.app.keys.caps[KeyTable.TakeOffer], text: qsTr("Accept") },
            { keys: page.app.keys.caps[KeyTable.EditOffer], text: qsTr("Edit") },
            { keys: page.app.keys.caps[KeyTable.DismissOffer], text: qsTr("Dismiss") },
            { keys: page.app.keys.caps[KeyTable.Undo], text: qsTr("Undo") }
        ]
    }
}
