pragma ComponentBehavior: Bound

import QtQuick
import Murmeli.Localisation
import Murmeli.Transcript
import Murmeli.Ui

// A line of a transcript: when, who, what; below it the marks that were made then.
Item {
    id: root

    required property TranscriptModel transcript
    required property int index
    required property string stamp
    required property string speaker
    required property string words
    required property int place
    required property var marks
    required property bool found
    required property int currentHit
    required property bool selected
    property bool current: false // the keyboard is here
    readonly property bool here: transcript.here === index
    readonly property var inks: [Theme.inkViolet, Theme.inkBlue, Theme.inkCyan, Theme.inkPink, Theme.inkGreen]

    signal pressed(bool extend)
    signal draggedTo(point at) // in this row

    implicitHeight: ground.height + notes.height
    Accessible.role: Accessible.ListItem
    Accessible.name: L.language && transcript.spoken(index, L.language)
    Accessible.focusable: true
    Accessible.focused: root.current
    Accessible.selectable: true
    Accessible.selected: root.selected

    Rectangle {
        id: ground
        x: Theme.padMain - 10
        width: parent.width - 2 * Theme.padMain + 20
        height: said.height + 14
        radius: 9
        color: root.here ? Theme.tintSoft(Theme.violet) : root.selected ? Theme.fill : Theme.clear

        Item { // follows the rounded corners
            visible: root.here
            width: 3
            height: parent.height
            clip: true
            Rectangle {
                width: 2 * radius
                height: parent.height
                radius: ground.radius
                color: Theme.violet
            }
        }
        MouseArea {
            anchors.fill: parent
            preventStealing: true
            Accessible.ignored: true
            onPressed: mouse => root.pressed(mouse.modifiers & Qt.ShiftModifier)
            onPositionChanged: mouse => root.draggedTo(mapToItem(root, mouse.x, mouse.y))
        }
        Label {
            id: moment
            x: 10
            y: 7
            width: Theme.grown(58)
            type: Theme.sub
            color: Theme.text3
            text: root.stamp
            Accessible.ignored: true
        }
        Label {
            id: who
            x: 10 + Theme.grown(72)
            y: 7
            width: Theme.grown(104)
            type: Theme.labelStrong
            color: root.inks[root.place] ?? Theme.text2
            elide: Text.ElideRight
            text: root.speaker
            Accessible.ignored: true
        }
        Label {
            id: said
            x: root.speaker.length > 0 ? who.x + who.width + 14 : who.x
            y: 7
            width: parent.width - x - 10
            type: Theme.body
            wrapMode: Text.Wrap
            textFormat: root.found ? Text.RichText : Text.PlainText
            text: !root.found ? root.words
                : root.currentHit > -2 ? root.transcript.marked(root.index, Theme.mark, Theme.fillViolet, Theme.white) : ""
            Accessible.ignored: true
        }
        FocusRing { shown: root.current && Look.typing; corner: parent.radius; gap: -Theme.focusWidth }
    }
    Column {
        id: notes
        x: Theme.padMain + Theme.grown(62)
        y: ground.height
        width: parent.width - x - Theme.padMain
        visible: root.marks.length > 0
        height: visible ? implicitHeight : 0
        Repeater {
            model: root.marks
            delegate: Item {
                id: note

                required property string modelData

                width: notes.width
                height: text.height + 8
                Symbol {
                    y: 4 + (Theme.sub.line - height) / 2
                    size: Theme.symbolSmall
                    name: "bookmark.fill"
                    ink: Theme.inkViolet
                }
                Label {
                    id: text
                    x: 21
                    y: 4
                    width: parent.width - x
                    type: Theme.sub
                    wrapMode: Text.Wrap
                    color: Theme.text2
                    text: L.t("transcript.mark") + " " + note.modelData
                    Accessible.ignored: true
                }
            }
        }
    }
}
