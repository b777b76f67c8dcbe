// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// An entry is divided, in time or by percents. Nothing is changed before Return; Escape leaves it as it was.
Sheet {
    id: sheet

    required property TimerModel timer

    readonly property SplitModel split: timer.split
    readonly property bool isAtTime: split.mode === SplitModel.AtTime
    // What there is for the parts, whatever the height of the window.
    readonly property int roomForParts: (parent ? parent.height : 600) - 2 * Theme.space16 - 256

    function takePane() {
        if (isAtTime)
            atTime.take();
        else
            byPercent.take();
    }

    function follow() {
        if (split.entryId === "")
            close();
        else
            open();
    }
    function followMode() {
        modes.currentIndex = isAtTime ? 0 : 1;
        if (visible)
            takePane();
    }

    title: split.title
    width: Math.min(640, (parent ? parent.width : 640) - 2 * Theme.space16)
    height: body.height + topPadding + bottomPadding
    leftPadding: Theme.space24
    rightPadding: Theme.space24
    topPadding: Theme.space16
    bottomPadding: Theme.space16
    // Not only once it has come up: who types at once means the sheet.
    onVisibleChanged: if (visible)
        takePane()
    onClosed: split.cancel()
    Component.onCompleted: {
        followMode();
        follow();
    }

    FocusScope {
        id: body
        width: sheet.availableWidth
        height: foot.y + foot.height
        focus: true
        Keys.onReturnPressed: sheet.split.save()
        Keys.onEnterPressed: sheet.split.save()

        Connections {
            target: sheet.split

            function onEntryChanged() {
                sheet.follow();
            }
            function onModeChanged() {
                sheet.followMode();
            }
        }
        Shortcut {
            sequences: ["Ctrl+Return", "Ctrl+Enter"]
            enabled: !sheet.isAtTime
            onActivated: sheet.split.addPart()
        }

        Label {
            id: heading
            width: Math.min(implicitWidth, modes.x - Theme.space16 - about.implicitWidth - Theme.space8)
            height: 28
            type: Label.Type.Title
            saidByPeople: true
            text: sheet.title
        }
        Label {
            id: about
            anchors.left: heading.right
            anchors.leftMargin: Theme.space8
            height: 28
            text: sheet.split.about
            color: Theme.ink2
        }
        Segments {
            id: modes
            anchors.right: parent.right
            visible: sheet.split.canSplitAtTime
            texts: [qsTr("At a Time"), qsTr("By Percent")]
            Accessible.name: qsTr("How to split")
            onChosen: index => sheet.split.mode = index === 0 ? SplitModel.AtTime : SplitModel.ByPercent
        }
        SplitAtTime {
            id: atTime
            y: 28 + Theme.space12
            width: parent.width
            timer: sheet.timer
            visible: sheet.isAtTime
        }
        SplitByPercent {
            id: byPercent
            y: 28 + Theme.space12
            width: parent.width
            timer: sheet.timer
            mostHeight: sheet.roomForParts
            visible: !sheet.isAtTime
        }
        Label {
            id: problem
            y: (sheet.isAtTime ? atTime : byPercent).y + (sheet.isAtTime ? atTime : byPercent).height + Theme.space8
            width: parent.width
            visible: text !== ""
            type: Label.Type.Small
            wrapMode: Text.Wrap
            color: Theme.danger
            text: sheet.split.isMomentWrong ? "" : sheet.split.problem
            Accessible.role: Accessible.AlertMessage
        }
        Item {
            id: foot
            y: problem.y + (problem.visible ? problem.height + Theme.space12 : sheet.isAtTime ? Theme.space8 : Theme.space4)
            width: parent.width
            height: 32

            Label {
                height: parent.height
                visible: sheet.isAtTime
                type: Label.Type.Small
                text: sheet.split.isSplit ? qsTr("Tags, billing and parts go to both.") : qsTr("Tags and billing go to both.")
                color: Theme.ink2
            }
            ActionButton {
                visible: !sheet.isAtTime && sheet.split.isSplit
                tall: true
                text: qsTr("Join Again")
                onClicked: sheet.split.joinAgain()
            }
            Row {
                anchors.right: parent.right
                spacing: Theme.space8

                QuietButton {
                    tall: true
                    text: qsTr("Cancel")
                    keys: "Esc"
                    onClicked: sheet.close()
                }
                PrimaryButton {
                    tall: true
                    text: sheet.isAtTime ? qsTr("Split") : qsTr("Save")
                    keys: "Return"
                    onClicked: sheet.split.save()
                }
            }
        }
    }
}
