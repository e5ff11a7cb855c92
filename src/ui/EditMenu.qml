import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// The usual menu of a text. Its words are the toolkit's own.
ContextMenu {
    id: root

    required property var text // an editor or a text to be selected
    name: text.Accessible.name
    readonly property bool selected: text.selectedText.length > 0

    function word(key: string): string {
        return qsTranslate("QWidgetTextControl", key).replace("&", "");
    }

    Component.onCompleted: if (text instanceof SelectableText) text.held = true
    onClosed: {
        if (text instanceof SelectableText) text.held = false;
        destroy();
    }

    Action {
        text: root.word("Cu&t")
        enabled: root.selected && !root.text.readOnly
        onTriggered: root.text.cut()
    }
    Action {
        text: root.word("&Copy")
        enabled: root.selected
        onTriggered: root.text.copy()
    }
    Action {
        text: root.word("&Paste")
        enabled: root.text.canPaste && !root.text.readOnly
        onTriggered: root.text.paste()
    }
    Action {
        text: root.word("Select All")
        enabled: root.text.length > 0
        onTriggered: root.text.selectAll()
    }
}
