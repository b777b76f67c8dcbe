// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// What holds for everybody in the workspace.
SettingsSheet {
    id: page

    required property AppModel app
    required property SettingsModel settings

    readonly property WorkspaceRules rules: settings.rules

    problem: settings.problem
    note: rules.note

    SettingGroup {
        title: qsTr("Name")
        titleTop: 6

        RuleText {
            rules: page.rules
            which: WorkspaceRules.Name
            value: page.rules.name
            width: Math.min(320, parent.width)
            Accessible.name: qsTr("Name of the workspace")
        }
    }
    SettingGroup {
        title: qsTr("Money")
        about: qsTr("A project without a rate of its own has this one.")
        titleTop: 6

        RuleText {
            id: currency
            rules: page.rules
            which: WorkspaceRules.Currency
            value: page.rules.currency
            width: 88
            Accessible.name: qsTr("Currency")
        }
        RuleText {
            id: rate
            anchors.left: currency.right
            anchors.leftMargin: 8
            rules: page.rules
            which: WorkspaceRules.Rate
            value: page.rules.rate
            width: 120
            placeholderText: qsTr("No rate")
            Accessible.name: qsTr("Rate an hour")
        }
        Label {
            anchors.left: rate.right
            anchors.leftMargin: 12
            height: 32
            text: qsTr("an hour")
            color: Theme.ink2
        }
    }
    SettingGroup {
        title: qsTr("Needed to end an entry")
        about: qsTr("The timer runs on until these are given.")
        titleTop: 0

        Column {
            width: parent.width
            spacing: 10

            RuleToggle {
                rules: page.rules
                which: WorkspaceRules.RequireDescription
                holds: page.rules.requireDescription
                text: qsTr("A description")
            }
            RuleToggle {
                rules: page.rules
                which: WorkspaceRules.RequireProject
                holds: page.rules.requireProject
                text: qsTr("A project")
            }
            RuleToggle {
                rules: page.rules
                which: WorkspaceRules.RequireTask
                holds: page.rules.requireTask
                text: qsTr("A task")
            }
            RuleToggle {
                rules: page.rules
                which: WorkspaceRules.RequireTag
                holds: page.rules.requireTag
                text: qsTr("A tag")
            }
        }
    }
    SettingGroup {
        title: qsTr("Only administrators make")
        titleTop: 0

        Column {
            width: parent.width
            spacing: 10

            RuleToggle {
                rules: page.rules
                which: WorkspaceRules.OnlyAdminsCreateProjects
                holds: page.rules.onlyAdminsCreateProjects
                text: qsTr("Projects, clients and tasks")
            }
            RuleToggle {
                rules: page.rules
                which: WorkspaceRules.OnlyAdminsCreateTags
                holds: page.rules.onlyAdminsCreateTags
                text: qsTr("Tags")
            }
        }
    }
    SettingGroup {
        title: qsTr("Locked before")
        about: qsTr("Time before this day cannot be changed any more.")
        titleTop: 6
        isLast: true

        RuleText {
            rules: page.rules
            which: WorkspaceRules.LockedBefore
            value: page.rules.lockedBefore
            width: 160
            placeholderText: qsTr("No day")
            Accessible.name: qsTr("Locked before")
        }
    }
}
