pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import Murmeli.Localisation
import Murmeli.Margin
import Murmeli.Ui

// Notes something to this very minute of the recording; below it what was noted last.
Card {
    id: root

    required property RecordingMarks marks

    RowLayout {
        Layout.fillWidth: true
        Layout.margins: Theme.gapRow
        Layout.leftMargin: Theme.padPanel
        spacing: Theme.gapGroup
        Symbol {
            Layout.preferredWidth: Theme.symbolRow
            Layout.preferredHeight: Theme.symbolRow
            size: Theme.symbolRow
            name: "bookmark"
            ink: Theme.inkViolet
        }
        Field {
            id: field
            Layout.fillWidth: true
            implicitHeight: Theme.grown(30)
            name: L.t("mark.placeholder")
            placeholderText: L.t("mark.placeholder")
            text: root.marks.draft
            onTextChanged: {
                root.marks.draft = text;
                if (text !== root.marks.draft) text = root.marks.draft;
            }
            onAccepted: root.marks.add()

            Connections {
                target: root.marks
                function onDraftChanged() {
                    if (field.text !== root.marks.draft) field.text = root.marks.draft;
                }
            }
        }
    }
    ColumnLayout {
        Layout.fillWidth: true
        visible: root.marks.latest.length > 0
        spacing: 0
        Accessible.role: Accessible.List
        Accessible.name: L.t("mark.section")

        Repeater {
            model: root.marks.latest
            delegate: Item {
                id: row

                required property mark modelData

                Layout.fillWidth: true
                implicitHeight: Theme.grown(34)
                Accessible.role: Accessible.ListItem
                Accessible.name: modelData.stamp + ", " + modelData.text

                Rectangle {
                    width: parent.width
                    height: Theme.hair
                    color: Theme.line
                }
                Symbol {
                    id: glyph
                    x: Theme.padPanel + (Theme.symbolRow - width) / 2
                    anchors.verticalCenter: parent.verticalCenter
                    size: Theme.symbolSmall
                    name: "bookmark.fill"
                    ink: Theme.text3
                }
                Label {
                    anchors { left: parent.left; leftMargin: Theme.padPanel + Theme.symbolRow + Theme.gapGroup; right: stamp.left; rightMargin: Theme.gapRow }
                    anchors.verticalCenter: parent.verticalCenter
                    type: Theme.sub
                    color: Theme.text2
                    elide: Text.ElideRight
                    text: row.modelData.text
                    Accessible.ignored: true
                }
                Label {
                    id: stamp
                    anchors { right: parent.right; rightMargin: Theme.padPanel; verticalCenter: parent.verticalCenter }
                    type: Theme.caption
                    color: Theme.text3
                    text: row.modelData.stamp
                    Accessible.ignored: true
                }
            }
        }
    }
}
