pragma Singleton

import QtQuick

// Makes the menu of a text when it is asked for: texts are many, and most are never asked.
QtObject {
    property Component menu: null

    function open(text: Item, x: real, y: real): void {
        menu = menu ?? Qt.createComponent("EditMenu.qml");
        text.forceActiveFocus(Qt.PopupFocusReason);
        menu.createObject(text, { text: text }).popup(text, x, y);
    }
}
