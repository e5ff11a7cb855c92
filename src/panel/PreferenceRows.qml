import QtQuick
import QtQuick.Layouts
import Murmeli.Localisation
import Murmeli.Panel
import Murmeli.Ui

// The two preferences that matter before a meeting.
Card {
    id: root

    required property PanelModel panel

    ColumnLayout {
        Layout.fillWidth: true
        Layout.margins: Theme.padPanel
        Layout.topMargin: 11
        Layout.bottomMargin: 11
        spacing: 0

        RowLayout {
            spacing: Theme.gapIcon
            Symbol {
                Layout.preferredWidth: Theme.symbolText
                Layout.preferredHeight: Theme.symbolText
                size: Theme.symbolText
                name: "doc.text"
                ink: Theme.text2
            }
            Label { text: L.t("panel.format") }
        }
        Segments {
            Layout.fillWidth: true
            Layout.topMargin: 8
            name: L.t("panel.format")
            options: [
                { value: "full", text: L.t("panel.format.full") },
                { value: "short", text: L.t("panel.format.short") }
            ]
            current: root.panel.format
            onChosen: value => root.panel.format = value
        }
        Label {
            Layout.fillWidth: true
            Layout.topMargin: 7
            Layout.rightMargin: -Theme.gapSmall
            type: Theme.captionTight
            color: Theme.text3
            wrapMode: Text.Wrap
            text: root.panel.format === "short" ? L.t("panel.format.short.hint") : L.t("panel.format.full.hint")
        }
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: Theme.hair
        color: Theme.line
    }
    CheckRow {
        Layout.fillWidth: true
        text: L.t("panel.auto_record")
        hint: root.panel.autoRecord ? L.t("panel.auto_record.hint.on") : L.t("panel.auto_record.hint.off")
        on: root.panel.autoRecord
        onChosen: on => root.panel.autoRecord = on
    }
}
