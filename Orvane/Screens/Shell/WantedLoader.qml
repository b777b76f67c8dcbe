// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick

// Something that is there only while it is wanted, as high as it wants to be.
Loader {
    id: loader

    required property bool isWanted
    required property string page
    // Of what is made.
    property var properties: ({})
    property bool isComplete: false

    function update(): void {
        if (isWanted)
            setSource(page, properties);
        else
            source = "";
    }

    height: item ? (item as Item).implicitHeight : 0
    onIsWantedChanged: if (isComplete)
        update()
    Component.onCompleted: {
        isComplete = true;
        if (isWanted)
            update();
    }
}
