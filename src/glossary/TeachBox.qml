import QtQuick
import Murmeli.Glossary
import Murmeli.Localisation
import Murmeli.Ui

// Teaches a word: how it is heard, and how it is written.
Rectangle {
    id: root

    required property GlossaryStore glossary
    property ViewMemory memory: null

    signal learned(string rule)
    signal closed()

    function focusFirst(): void {
        heard.forceActiveFocus(Qt.OtherFocusReason);
    }
    function add(): void {
        const rule = root.glossary.learn(heard.text, correct.text);
        if (rule.length === 0) return;
        root.learned(rule);
        heard.clear();
        correct.clear();
        heard.forceActiveFocus(Qt.OtherFocusReason);
    }

    implicitHeight: Theme.grown(52)
    radius: Theme.rCard
    color: Theme.bgCard
    border.width: Theme.hair
    border.color: Theme.line
    Keys.onEscapePressed: root.closed()

    Row {
        id: row
        anchors.fill: parent
        anchors.margins: 10
        spacing: Theme.gapRow
        readonly property real fieldWidth: (width - arrow.width - button.width - 3 * spacing) / 2

        Field {
            id: heard
            width: row.fieldWidth
            name: L.t("assistant.placeholder.heard")
            text: root.memory?.kept("heard", "") ?? ""
            onTextChanged: root.memory?.keep("heard", text)
            placeholderText: L.t("assistant.placeholder.heard")
            onAccepted: correct.forceActiveFocus(Qt.TabFocusReason)
        }
        Symbol {
            id: arrow
            anchors.verticalCenter: parent.verticalCenter
            size: Theme.symbolText
            name: "arrow.right"
            ink: Theme.text3
        }
        Field {
            id: correct
            width: row.fieldWidth
            name: L.t("assistant.placeholder.correct")
            text: root.memory?.kept("correct", "") ?? ""
            onTextChanged: root.memory?.keep("correct", text)
            placeholderText: L.t("assistant.placeholder.correct")
            onAccepted: root.add()
        }
        PillButton {
            id: button
            anchors.verticalCenter: parent.verticalCenter
            kind: PillButton.Primary
            text: L.t("assistant.add")
            spokenName: L.t("assistant.add.name")
            onClicked: root.add()
        }
    }
}
