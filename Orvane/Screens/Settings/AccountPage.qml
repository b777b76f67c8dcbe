// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import Orvane
import Orvane.Components

// Who one is at this server, where else one is signed in, and the ways out.
SettingsSheet {
    id: page
    objectName: "accountPage"

    required property AppModel app
    required property SettingsModel settings

    readonly property AccountDetails account: settings.account
    readonly property AccountLogins logins: settings.logins
    // What is typed or answered in its place, one at a time: "", "signout", "delete" or "passkey".
    property string question

    problem: settings.problem
    note: account.isAway ? qsTr("The server is away; these can be changed again once it is back.") : ""

    Component.onCompleted: {
        account.setLookedAt(true);
        logins.setLookedAt(true);
    }
    Component.onDestruction: {
        account.setLookedAt(false);
        logins.setLookedAt(false);
    }

    SettingGroup {
        title: qsTr("You")
        about: page.account.hasSignIn ? qsTr("Signed in to %1.").arg(page.account.place) : qsTr("The account on this computer, which needs no signing in.")

        AccountFacts {
            width: parent.width
            settings: page.settings
        }
    }
    SettingGroup {
        title: qsTr("Password")
        about: qsTr("Changing it signs out your other devices.")
        visible: page.account.hasPassword

        PasswordChange {
            width: parent.width
            account: page.account
        }
    }
    SettingGroup {
        title: qsTr("Passkeys")
        about: qsTr("Security keys that sign you in without a password.")
        visible: page.logins.offersPasskeys || page.logins.passkeys.length > 0

        Column {
            width: parent.width
            spacing: Theme.space8

            LoginTable {
                objectName: "passkeyTable"
                width: parent.width
                name: qsTr("Passkeys")
                iconName: "key"
                logins: page.logins.passkeys
                isAway: page.account.isAway
                onRemoved: id => page.logins.removePasskey(id)
            }
            PasskeyForm {
                width: parent.width
                visible: page.logins.offersPasskeys
                logins: page.logins
                account: page.account
                asks: page.question === "passkey"
                onAsked: wanted => page.question = wanted ? "passkey" : ""
            }
        }
    }
    SettingGroup {
        title: qsTr("Sign-In Providers")
        about: qsTr("Who signs you in through the browser.")
        visible: page.logins.providers.length > 0

        LoginTable {
            width: parent.width
            name: qsTr("Sign-In Providers")
            iconName: "person"
            logins: page.logins.providers
            isAway: page.account.isAway
            onRemoved: id => page.logins.removeProvider(id)
        }
    }
    SettingGroup {
        title: qsTr("Sessions")
        about: qsTr("Where this account is signed in.")
        visible: page.account.hasSignIn

        SessionTable {
            width: parent.width
            account: page.account
        }
    }
    SettingGroup {
        title: qsTr("My Data")
        isLast: !page.account.hasSignIn

        MyData {
            width: parent.width
            account: page.account
            asks: page.question === "delete"
            onAsked: wanted => page.question = wanted ? "delete" : ""
        }
    }
    SettingGroup {
        title: qsTr("Sign Out")
        about: qsTr("Other servers stay signed in.")
        visible: page.account.hasSignIn
        isLast: true

        SignOutAnswers {
            width: parent.width
            app: page.app
            account: page.account
            asks: page.question === "signout"
            onAsked: wanted => page.question = wanted ? "signout" : ""
        }
    }
}
