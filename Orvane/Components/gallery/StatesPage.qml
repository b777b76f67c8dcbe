// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane.Components

// Every control in all its states, in the places that the design has them.
Item {
    anchors.fill: parent

    Label {
        x: 32
        y: 24
        type: Label.Type.Title
        text: "Components and their states"
    }
    Row {
        x: 32 + 128
        y: 52
        spacing: 16

        Repeater {
            model: ["Default", "Hover", "Focus", "Pressed", "Disabled", "Error", "Pending"]

            Label {
                required property string modelData

                width: 164
                type: Label.Type.Caption
                color: Theme.ink3
                text: modelData
            }
        }
    }
    Column {
        x: 32
        y: 72

        StateRow {
            name: "Main action"

            StateCell { PrimaryButton { text: "Take Split" } }
            StateCell { PrimaryButton { text: "Take Split"; lit: true } }
            StateCell { PrimaryButton { text: "Take Split"; ringed: true } }
            StateCell { PrimaryButton { text: "Take Split"; down: true } }
            StateCell { PrimaryButton { text: "Take Split"; enabled: false } }
            StateCell {}
            StateCell { PrimaryButton { text: "Taking…"; busy: true } }
        }
        StateRow {
            name: "Action"

            StateCell { ActionButton { text: "Edit…" } }
            StateCell { ActionButton { text: "Edit…"; lit: true } }
            StateCell { ActionButton { text: "Edit…"; ringed: true } }
            StateCell { ActionButton { text: "Edit…"; down: true } }
            StateCell { ActionButton { text: "Edit…"; enabled: false } }
            StateCell { ActionButton { text: "Delete Account…"; dangerous: true } }
            StateCell { ActionButton { text: "Sending…"; busy: true } }
        }
        StateRow {
            name: "Quiet action"

            StateCell { QuietButton { text: "Dismiss" } }
            StateCell { QuietButton { text: "Dismiss"; lit: true } }
            StateCell { QuietButton { text: "Dismiss"; ringed: true } }
            StateCell { QuietButton { text: "Dismiss"; down: true } }
            StateCell { QuietButton { text: "Dismiss"; enabled: false } }
            StateCell { QuietButton { text: "Delete"; dangerous: true; keys: "Backspace" } }
            StateCell { QuietButton { text: "Dismissing…"; busy: true } }
        }
        StateRow {
            name: "Icon"

            StateCell { IconButton { iconName: "split"; text: "Split…" } }
            StateCell { IconButton { iconName: "split"; text: "Split…"; lit: true } }
            StateCell { IconButton { iconName: "split"; text: "Split…"; ringed: true } }
            StateCell { IconButton { iconName: "split"; text: "Split…"; down: true } }
            StateCell { IconButton { iconName: "split"; text: "Split…"; enabled: false } }
            StateCell { IconButton { iconName: "bill"; text: "Billable"; checkable: true; checked: true } }
            StateCell {}
        }
        StateRow {
            name: "Field"

            StateCell { TextEntry { width: parent.width; text: "09:10" } }
            StateCell { TextEntry { width: parent.width; text: "09:10"; lit: true } }
            StateCell { TextEntry { width: parent.width; text: "09:10"; focus: true; typing: true; cursorVisible: true } }
            StateCell { TextEntry { width: parent.width; placeholderText: "Find"; iconName: "search"; keys: "Ctrl+F" } }
            StateCell { TextEntry { width: parent.width; text: "09:10"; enabled: false } }
            StateCell { TextEntry { width: parent.width; text: "9:75"; error: "This is no time." } }
            StateCell { TextEntry { width: parent.width; text: "09:10"; busy: true } }
        }
        StateRow {
            name: "Switch"

            StateCell { Toggle { text: "Billable"; checked: true } }
            StateCell { Toggle { text: "Billable"; checked: true; lit: true } }
            StateCell { Toggle { text: "Billable"; checked: true; ringed: true } }
            StateCell { Toggle { text: "Billable"; down: true } }
            StateCell { Toggle { text: "Billable"; enabled: false } }
            StateCell {}
            StateCell {}
        }
        StateRow {
            name: "Section"

            StateCell { SectionRow { width: parent.width; text: "Projects"; iconName: "projects"; count: 4 } }
            StateCell { SectionRow { width: parent.width; text: "Projects"; iconName: "projects"; count: 4; lit: true } }
            StateCell { SectionRow { width: parent.width; text: "Projects"; iconName: "projects"; count: 4; ringed: true } }
            StateCell { SectionRow { width: parent.width; text: "Projects"; iconName: "projects"; count: 4; current: true } }
            StateCell { SectionRow { width: parent.width; text: "Projects"; iconName: "projects"; count: 4; enabled: false } }
            StateCell { SectionRow { width: parent.width; text: "Appearance" } }
            StateCell {}
        }
        StateRow {
            name: "Menu row"

            StateCell { MenuRow { width: parent.width; text: "Split…"; iconName: "split"; keys: "S" } }
            StateCell { MenuRow { width: parent.width; text: "Split…"; iconName: "split"; keys: "S"; lit: true } }
            StateCell { MenuRow { width: parent.width; text: "Split…"; iconName: "split"; keys: "S"; lit: true } }
            StateCell { MenuRow { width: parent.width; text: "Split…"; iconName: "split"; keys: "S"; lit: true; down: true } }
            StateCell { MenuRow { width: parent.width; text: "Split…"; iconName: "split"; keys: "S"; enabled: false } }
            StateCell { MenuRow { width: parent.width; text: "Delete"; keys: "Backspace"; dangerous: true } }
            StateCell { MenuRow { width: parent.width; text: "Show Archived"; checkable: true; checked: true } }
        }
        StateRow {
            name: "Choice"

            StateCell { ChoiceCell { width: parent.width; text: "12-hour"; example: "3:47 pm" } }
            StateCell { ChoiceCell { width: parent.width; text: "12-hour"; example: "3:47 pm"; lit: true } }
            StateCell { ChoiceCell { width: parent.width; text: "24-hour"; example: "15:47"; checked: true; ringed: true } }
            StateCell { ChoiceCell { width: parent.width; text: "12-hour"; example: "3:47 pm"; down: true } }
            StateCell { ChoiceCell { width: parent.width; text: "12-hour"; example: "3:47 pm"; enabled: false } }
            StateCell { ChoiceCell { width: parent.width; text: "24-hour"; example: "15:47"; checked: true } }
            StateCell {}
        }
        StateRow {
            name: "Segments and more"

            StateCell { Segments { texts: ["At a Time", "Percent"] } }
            StateCell { SelectButton { width: parent.width; text: "Europe/Madrid"; lit: true } }
            StateCell { Segments { texts: ["At a Time", "Percent"]; ringed: true; currentIndex: 1 } }
            StateCell { SelectButton { width: parent.width; inEditor: true; open: true; text: "Atlas API"; ProjectChip { width: parent.width; anchors.verticalCenter: parent.verticalCenter; color: "#3b77d0"; project: "Atlas API"; task: "Backend" } } }
            StateCell { SelectButton { width: parent.width; text: "Europe/Madrid"; enabled: false } }
            StateCell { SelectButton { width: parent.width; text: "Europe/Oslo"; detail: "UTC+01:00" } }
            StateCell { Row { spacing: 12; CheckMark { text: "Chosen"; checked: true } CheckMark { text: "Chosen" } CheckMark { text: "Chosen"; lit: true } CheckMark { text: "Chosen"; checked: true; ringed: true } CheckMark { text: "Chosen"; checked: true; enabled: false } } }
        }
    }
    Row {
        x: 32
        y: 536
        spacing: 32

        Column {
            width: 672
            spacing: 6

            AnswerRow { width: parent.width; text: "Send First"; effect: "Signs out when the server has them all."; keys: "Return"; ringed: true }
            AnswerRow { width: parent.width; text: "Keep on This Computer"; effect: "Signs out now; they are sent when you sign in here again."; keys: "K" }
            AnswerRow { width: parent.width; text: "Cancel"; effect: "Stays signed in."; keys: "Esc"; lit: true }
        }
        Column {
            width: 672
            spacing: 12

            OfferLine { width: parent.width; warns: true; icon: "overlap"; text: "11:00 – 11:10 is counted twice."; actionText: "Trim “Stand-up” to 11:00"; actionKey: "T"; dismissText: "Leave Both" }
            OfferLine { width: parent.width; icon: "clock"; text: "Agents worked on this from 09:02."; actionText: "Start at 09:02"; dismissText: "Dismiss" }
        }
    }
    Row {
        x: 32
        y: 676
        spacing: 24

        Notice { text: "Deleted “Stand-up”"; actionText: "Undo"; actionKey: "Ctrl+Z" }
        Notice { icon: "warn"; iconColor: Theme.danger; text: "Couldn't stop the timer."; actionText: "Try Again" }
        Notice { width: 300; text: "3 entries moved to Checkout, and this says more than fits"; actionText: "Undo" }
    }
    Row {
        x: 32
        y: 748
        spacing: 24

        LiveDot { anchors.verticalCenter: parent.verticalCenter }
        ProjectChip { anchors.verticalCenter: parent.verticalCenter; color: "#3b77d0"; project: "Atlas API"; task: "Backend" }
        ProjectChip { anchors.verticalCenter: parent.verticalCenter; width: 110; color: "#f59e0b"; project: "Alert Triage"; task: "Backend" }
        ProjectChip { anchors.verticalCenter: parent.verticalCenter }
        Pill { ProjectChip { anchors.verticalCenter: parent.verticalCenter; type: Label.Type.Small; color: Theme.leaf; project: "Platform"; task: "CI" } }
        ShareBar { anchors.verticalCenter: parent.verticalCenter; shares: [{color: Theme.blue, share: 60}, {color: Theme.orange, share: 40}] }
        ShareBar { anchors.verticalCenter: parent.verticalCenter; width: 300; shares: [{color: Theme.blue, share: 50}, {color: Theme.violet, share: 20}, {color: Theme.rose, share: 30}] }
        Badge { anchors.verticalCenter: parent.verticalCenter; count: 12 }
        Skeleton { anchors.verticalCenter: parent.verticalCenter }
        KeyCap { anchors.verticalCenter: parent.verticalCenter; keys: "Ctrl+Shift+T" }
        KeyCap { anchors.verticalCenter: parent.verticalCenter; keys: "Return" }
    }
    Row {
        x: 32
        y: 796
        spacing: 32

        Label { anchors.baseline: display.baseline; type: Label.Type.Caption; text: "Caption 11" }
        Label { anchors.baseline: display.baseline; type: Label.Type.Small; text: "Small 12" }
        Label { anchors.baseline: display.baseline; type: Label.Type.Body; text: "Body 13" }
        Label { anchors.baseline: display.baseline; type: Label.Type.Title; text: "Title 15" }
        Label { anchors.baseline: display.baseline; type: Label.Type.Entry; text: "Entry 18" }
        Label { anchors.baseline: display.baseline; type: Label.Type.Figures; text: "Figures 20" }
        Label { anchors.baseline: display.baseline; type: Label.Type.Elapsed; text: "1:24:36" }
        Label { id: display; type: Label.Type.Display; text: "1:11:11" }
    }
    KeyBar {
        anchors.bottom: parent.bottom
        width: parent.width
        hints: [{keys: "Return", text: "Save"}, {keys: "Esc", text: "Leave as it was"}, {keys: "Tab", text: "Next field"}, {keys: "Up Down", text: "1 min"}, {keys: "Shift+Up Shift+Down", text: "15 min"}, {keys: "Ctrl+Z", text: "Undo"}]
    }
}
