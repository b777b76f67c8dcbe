// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// How time is cut and written. Stored time stays as it is.
SettingsSheet {
    id: page

    required property AppModel app
    required property SettingsModel settings

    readonly property TimeSettings time: settings.time

    problem: settings.problem
    note: settings.isAway ? qsTr("The server is away; these can be changed again once it is back.") : ""

    SettingGroup {
        title: qsTr("Time zone")
        about: qsTr("Cuts your days and weeks, on all your devices.")

        ZoneButton {
            id: zone
            time: page.time
            enabled: !page.settings.isAway
            width: Math.min(320, parent.width)
        }
        Label {
            anchors.left: parent.width > 600 ? zone.right : parent.left
            anchors.leftMargin: parent.width > 600 ? 12 : 0
            anchors.verticalCenter: parent.width > 600 ? zone.verticalCenter : undefined
            anchors.top: parent.width > 600 ? undefined : zone.bottom
            anchors.topMargin: 8
            width: parent.width - x
            type: Label.Type.Small
            wrapMode: Text.Wrap
            text: page.time.zoneSays
            color: Theme.ink2
        }
    }
    SettingGroup {
        title: qsTr("Week starts on")

        Segments {
            id: days
            enabled: !page.settings.isAway
            texts: [qsTr("Mon"), qsTr("Tue"), qsTr("Wed"), qsTr("Thu"), qsTr("Fri"), qsTr("Sat"), qsTr("Sun")]
            currentIndex: page.time.weekStart
            Accessible.name: qsTr("Week starts on")
            onChosen: index => {
                page.time.setWeekStart(index);
                currentIndex = Qt.binding(() => page.time.weekStart);
            }
        }
        Label {
            y: 36
            width: parent.width
            type: Label.Type.Small
            text: page.time.weekSays
            color: Theme.ink2
        }
    }
    SettingGroup {
        title: qsTr("Clock")
        titleTop: 10

        ChoiceGrid {
            width: parent.width
            enabled: !page.settings.isAway
            choices: page.time.clocks
            onChosen: value => page.time.setClock(value)
        }
    }
    SettingGroup {
        title: qsTr("Durations")
        about: qsTr("In the running timer and in reports.")
        titleTop: 10

        ChoiceGrid {
            id: durations
            width: parent.width
            shares: [272, 212, 196]
            least: 180
            enabled: !page.settings.isAway
            choices: page.time.durations
            onChosen: value => page.time.setDuration(value)
        }
        Label {
            anchors.top: durations.bottom
            anchors.topMargin: 8
            width: parent.width
            type: Label.Type.Small
            wrapMode: Text.Wrap
            text: qsTr("Lists and menus stay short, 1h 24m, whichever you choose.")
            color: Theme.ink2
        }
    }
    SettingGroup {
        title: qsTr("Date order")
        about: qsTr("For dates in figures. Titles always name the month.")
        titleTop: 10

        ChoiceGrid {
            width: parent.width
            least: 290
            enabled: !page.settings.isAway
            choices: page.time.dates
            onChosen: value => page.time.setDate(value)
        }
    }
    SettingGroup {
        title: qsTr("How it looks")

        TimeExample {
            time: page.time
            width: parent.width
        }
    }
    SettingGroup {
        title: qsTr("What you can type")
        about: qsTr("In every time and date field.")
        titleTop: 8
        isLast: true

        Rectangle {
            width: parent.width
            height: readings.height
            radius: Theme.radiusCard
            color: "transparent"
            border.color: Theme.line2

            Flow {
                id: readings
                width: parent.width

                Repeater {
                    model: page.time.typed

                    Row {
                        id: reading

                        required property var modelData

                        height: 36
                        leftPadding: 12
                        rightPadding: 12
                        spacing: 8

                        Label {
                            height: 36
                            text: reading.modelData.typed
                            color: Theme.ink2
                        }
                        Icon {
                            anchors.verticalCenter: parent.verticalCenter
                            name: "right"
                            color: Theme.ink3
                        }
                        Label {
                            height: 36
                            text: reading.modelData.read
                            font.weight: Font.Medium
                        }
                    }
                }
            }
        }
    }
}
