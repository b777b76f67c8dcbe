// SPDX-License-Identifier: GPL-3.0-or-later
import QtQuick

// A section of the window: loaded when it is first looked at, and kept from then on with all that is typed in it.
Loader {
    id: section

    required property bool isCurrent
    required property string page
    // Of the page, when it is made.
    required property var properties

    property bool isComplete: false

    function show(): void {
        if (!isCurrent || !isComplete)
            return;
        if (status === Loader.Null)
            setSource(page, properties);
        forceActiveFocus(Qt.OtherFocusReason);
    }

    visible: isCurrent
    focus: isCurrent
    onIsCurrentChanged: show()
    Component.onCompleted: {
        isComplete = true;
        show();
    }
}
