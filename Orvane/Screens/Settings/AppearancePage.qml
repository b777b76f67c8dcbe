// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import Orvane
import Orvane.Components

// How the windows on this computer look.
SettingsSheet {
    id: page

    required property AppModel app
    required property SettingsModel settings

    readonly property WindowChoices choices: app.choices

    problem: choices.problem

    SettingGroup {
        title: qsTr("Colours")
        about: qsTr("Of every window on this computer.")
        titleTop: 10

        ChoiceGrid {
            width: parent.width
            shares: [1, 1, 1]
            least: 190
            choices: [
                { value: "system", text: qsTr("System"), example: Appearance.isDark && page.choices.scheme === WindowChoices.System ? qsTr("Dark now") : page.choices.scheme === WindowChoices.System ? qsTr("Light now") : "", isChosen: page.choices.scheme === WindowChoices.System },
                { value: "light", text: qsTr("Light"), isChosen: page.choices.scheme === WindowChoices.Light },
                { value: "dark", text: qsTr("Dark"), isChosen: page.choices.scheme === WindowChoices.Dark }
            ]
            onChosen: value => page.choices.setScheme(value === "light" ? WindowChoices.Light : value === "dark" ? WindowChoices.Dark : WindowChoices.System)
        }
    }
    SettingGroup {
        title: qsTr("Motion")
        about: qsTr("Menus and sheets fade in; nothing else moves by itself but the clock.")
        titleTop: 10
        isLast: true

        ChoiceGrid {
            width: parent.width
            choices: [
                { value: "system", text: qsTr("System"), example: page.choices.keepsStill ? "" : Appearance.reducedMotion ? qsTr("Reduced now") : qsTr("On now"), isChosen: !page.choices.keepsStill },
                { value: "still", text: qsTr("Reduced"), isChosen: page.choices.keepsStill }
            ]
            onChosen: value => page.choices.setKeepsStill(value === "still")
        }
    }
}
