// SPDX-License-Identifier: GPL-3.0-or-later
pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Templates as T
import Orvane
import Orvane.Components

// What an entry is about, and below it, once typing rests, earlier work that fits: the arrows choose, Return or Tab takes
// what is chosen, Escape closes the list first.
TextEntry {
    id: field

    required property EntryEditor editor
    required property DescriptionSuggestions suggestions

    function step(by: int): bool {
        if (!list.visible)
            return false;
        options.currentIndex = Math.max(-1, Math.min(options.count - 1, options.currentIndex + by));
        return true;
    }
    function takeChosen(): bool {
        if (!list.visible || options.currentIndex < 0)
            return false;
        field.suggestions.take(options.currentIndex);
        return true;
    }
    function act(key: int): bool {
        switch (key) {
        case Qt.Key_Down:
            return step(1);
        case Qt.Key_Up:
            return step(-1);
        case Qt.Key_Return:
        case Qt.Key_Enter:
        case Qt.Key_Tab:
            return takeChosen();
        case Qt.Key_Escape:
            if (!list.visible)
                return false;
            field.suggestions.close();
            return true;
        }
        return false;
    }

    placeholderText: qsTr("Description")
    text: editor.description
    onTextEdited: {
        options.currentIndex = -1;
        field.editor.description = text;
        field.suggestions.type(text);
    }
    onAccepted: field.editor.save()
    onActiveFocusChanged: if (!activeFocus)
        field.suggestions.close()
    Keys.onPressed: event => event.accepted = field.act(event.key)

    T.Popup {
        id: list

        y: field.height + 4
        width: Math.max(field.width, 320)
        height: options.contentHeight + 2 * padding
        padding: 4
        margins: Theme.space8
        visible: field.activeFocus && field.suggestions.count > 0
        closePolicy: T.Popup.NoAutoClose

        background: Panel {
            level: 2
            radius: Theme.radiusCard
        }
        ListView {
            id: options

            implicitHeight: contentHeight
            width: list.availableWidth
            height: list.availableHeight
            interactive: false
            currentIndex: -1
            model: field.suggestions
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Earlier descriptions")

            delegate: PickRow {
                required property int index
                required property string description
                required property string project
                required property string projectColor

                width: options.width
                text: description
                detail: project
                shade: projectColor
                chosen: ListView.isCurrentItem
                onPicked: field.suggestions.take(index)
            }
        }
    }
}
