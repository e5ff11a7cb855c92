pragma Singleton

import QtQuick
import QtQuick.Controls.Basic

// Makes the menu of a text when it is asked for: texts are many, and most are never asked.
QtObject {
    property Component menu: null

    function open(text: var, x: real, y: real): void {
        if (text.length === 0 && (text.readOnly || !text.canPaste)) return; // nothing applies
        menu = menu ?? Qt.createComponent("EditMenu.qml");
        text.forceActiveFocus(Qt.PopupFocusReason);
        const opened = menu.createObject(text, { text: text }) as Menu;
        opened.popup(text, x, y);
    }
}
