// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick
import QtQuick.Templates as T

// A sheet that is made when it is first wanted, and kept from then on. It opens by itself.
Loader {
    id: place

    required property bool isWanted
    required property string page
    // Of the sheet.
    required property var properties

    onIsWantedChanged: {
        if (isWanted && status === Loader.Null)
            setSource(page, Object.assign({ parent: T.Overlay.overlay }, properties));
    }
}
