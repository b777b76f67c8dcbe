// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// An offer: its number, what it is about and its answers. The one that is looked at shows all of it.
FocusScope {
    id: card

    required property ReviewModel review
    required property KeyTable keys
    required property int index
    required property string offerId
    required property string title
    required property string times
    required property string place
    required property string projectColor
    required property string tags
    required property string billing
    required property var fields
    required property string note
    required property bool isRemoval

    property bool isCurrent: false

    signal chosen
    signal editWanted

    implicitHeight: isCurrent ? all.height + 2 * Theme.space16 : 64
    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("%1. %2. %3").arg(index + 1).arg(title).arg(about.said)
    Accessible.focusable: true
    Accessible.onPressAction: card.chosen()

    Rectangle {
        anchors.fill: parent
        radius: Theme.radiusCard
        color: "transparent"
        border.width: card.isCurrent ? 2 : 1
        border.color: card.isCurrent ? Theme.accent : Theme.line

        Wash {
            lit: hover.hovered && !card.isCurrent
        }
    }
    HoverHandler {
        id: hover
    }
    TapHandler {
        onTapped: card.chosen()
    }
    Rectangle {
        id: number
        x: card.isCurrent ? 16 : 12
        y: card.isCurrent ? 18 : 22
        width: 20
        height: 20
        radius: 10
        color: card.isCurrent ? Theme.accentFill : "transparent"
        border.width: card.isCurrent ? 0 : 1.5
        border.color: Theme.ink2

        Label {
            anchors.centerIn: parent
            type: Label.Type.Caption
            font.weight: Font.DemiBold
            text: card.index + 1
            color: card.isCurrent ? Theme.inkOnAccent : Theme.ink1
            Accessible.ignored: true
        }
    }
    Column {
        id: all
        anchors.left: number.right
        anchors.leftMargin: 12
        anchors.right: answers.visible ? answers.left : parent.right
        anchors.rightMargin: 16
        y: card.isCurrent ? 16 : 12
        spacing: card.isCurrent ? Theme.space8 : 2

        Item {
            width: parent.width
            height: card.isCurrent ? 24 : 20

            Icon {
                id: mark
                anchors.verticalCenter: parent.verticalCenter
                name: "agent"
                color: Theme.ink3
            }
            Label {
                anchors.left: mark.right
                anchors.leftMargin: 8
                anchors.verticalCenter: parent.verticalCenter
                width: parent.width - x
                saidByPeople: true
                type: card.isCurrent ? Label.Type.Title : Label.Type.Body
                font.weight: card.isCurrent ? Font.DemiBold : Font.Medium
                text: card.title
                Accessible.ignored: true
            }
        }
        OfferLineAbout {
            id: about
            x: 24
            width: parent.width - x
            times: card.times
            place: card.place
            projectColor: card.projectColor
            tags: card.tags
            billing: card.isCurrent ? card.billing : ""
        }
        Loader {
            x: 24
            width: parent.width - x
            visible: card.isCurrent && card.fields.length > 0
            source: visible ? "OfferFields.qml" : ""
            onLoaded: (item as OfferFields).fields = Qt.binding(() => card.fields)
        }
        Label {
            x: 24
            width: parent.width - x
            visible: card.isCurrent && text !== ""
            saidByPeople: true
            wrapMode: Text.Wrap
            maximumLineCount: 6
            text: card.note
            color: Theme.ink2
        }
        // Its answers below, where all of it is shown.
        Row {
            x: 24
            visible: card.isCurrent
            topPadding: Theme.space4
            spacing: Theme.space8

            PrimaryButton {
                tall: true
                text: qsTr("Accept")
                keys: card.keys.caps[KeyTable.TakeOffer]
                enabled: !card.review.isSettling
                Accessible.name: qsTr("Accept: %1").arg(card.title)
                onClicked: card.review.accept(card.offerId)
            }
            ActionButton {
                tall: true
                visible: !card.isRemoval
                text: qsTr("Edit…")
                keys: card.keys.caps[KeyTable.EditOffer]
                Accessible.name: qsTr("Edit: %1").arg(card.title)
                onClicked: card.editWanted()
            }
            ActionButton {
                tall: true
                text: qsTr("Decline")
                keys: card.keys.caps[KeyTable.DismissOffer]
                enabled: !card.review.isSettling
                Accessible.name: qsTr("Decline: %1").arg(card.title)
                onClicked: card.review.decline(card.offerId)
            }
        }
    }
    Row {
        id: answers
        anchors.right: parent.right
        anchors.rightMargin: 12
        y: 18
        visible: !card.isCurrent
        spacing: Theme.space8

        ActionButton {
            text: qsTr("Accept")
            focusPolicy: Qt.NoFocus
            enabled: !card.review.isSettling
            Accessible.name: qsTr("Accept: %1").arg(card.title)
            onClicked: card.review.accept(card.offerId)
        }
        ActionButton {
            visible: !card.isRemoval && card.width >= 640
            text: qsTr("Edit…")
            focusPolicy: Qt.NoFocus
            Accessible.name: qsTr("Edit: %1").arg(card.title)
            onClicked: card.editWanted()
        }
        QuietButton {
            text: qsTr("Decline")
            focusPolicy: Qt.NoFocus
            enabled: !card.review.isSettling
            Accessible.name: qsTr("Decline: %1").arg(card.title)
            onClicked: card.review.decline(card.offerId)
        }
    }
}
