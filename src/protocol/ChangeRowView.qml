import QtQuick
import Murmeli.Localisation
import Murmeli.Protocol
import Murmeli.Ui

// A change of the protocol, and the way to take it back.
Item {
    id: root

    required property changeRow row
    required property bool first // on its card
    required property bool last
    property bool current: false // the keyboard is here

    signal undoAsked()
    signal redoAsked()
    signal copyAsked()

    implicitHeight: texts.y + texts.height + 14
    Accessible.role: Accessible.ListItem
    Accessible.name: row.spoken
    Accessible.focusable: true
    Accessible.focused: current

    Item { // the part of the card that lies under this row
        anchors.fill: parent
        clip: true
        Rectangle {
            readonly property int above: root.first ? 0 : 20
            y: -above
            width: parent.width
            height: parent.height + above + (root.last ? 0 : 20)
            radius: Theme.rCard - 1
            color: Theme.bgCard
            border.width: Theme.hair
            border.color: Theme.line
        }
        Rectangle {
            x: 16
            width: parent.width - 32
            height: Theme.hair
            visible: !root.first && root.row.title.length > 0
            color: Theme.line
        }
    }
    Column {
        id: texts
        x: 16
        y: root.row.title.length > 0 ? 14 : 0
        width: parent.width - 32
        spacing: 5
        Item {
            width: parent.width
            height: Math.max(title.height, tools.height)
            visible: root.row.title.length > 0
            Label {
                id: title
                anchors.verticalCenter: parent.verticalCenter
                type: Theme.labelStrong
                text: root.row.title
                Accessible.ignored: true
            }
            Label {
                anchors { left: title.right; leftMargin: Theme.gapSmall; right: tools.left; rightMargin: Theme.gapSmall; verticalCenter: parent.verticalCenter }
                type: Theme.sub
                color: Theme.text3
                elide: Text.ElideRight
                text: root.row.time
                Accessible.ignored: true
            }
            Row {
                id: tools
                anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                PillButton { // one, so that it keeps the keyboard
                    visible: root.row.undoable || root.row.redoable
                    symbol: root.row.undoable ? "arrow.counterclockwise" : ""
                    text: root.row.undoable ? L.t("ledger.undo") : L.t("ledger.redo")
                    spokenName: root.row.undoable ? L.t("ledger.undo.name", root.row.spoken) : L.t("ledger.redo.name", root.row.spoken)
                    onClicked: root.row.undoable ? root.undoAsked() : root.redoAsked()
                }
                Pill {
                    visible: root.row.foreign
                    color: Theme.fill
                    ink: Theme.text2
                    text: L.t("ledger.foreign")
                    Accessible.ignored: true
                }
            }
        }
        DifferenceText {
            width: parent.width
            pieces: root.row.pieces
            faded: !root.row.holds
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: root.row.remark.length > 0
            type: Theme.sub
            color: Theme.text3
            wrapMode: Text.Wrap
            text: L.t("ledger.remark", root.row.remark)
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: root.row.note.length > 0
            type: Theme.sub
            color: Theme.text2
            wrapMode: Text.Wrap
            text: root.row.note
            Accessible.ignored: true
        }
        Flow {
            width: parent.width
            visible: root.row.gone
            spacing: Theme.gapSmall
            Label {
                height: Theme.buttonSmall
                verticalAlignment: Text.AlignVCenter
                type: Theme.sub
                color: Theme.inkPink
                text: L.t("ledger.gone")
                Accessible.role: Accessible.AlertMessage
            }
            LinkButton {
                symbol: "doc.on.doc"
                text: L.t("ledger.copy_before")
                onClicked: root.copyAsked()
            }
        }
    }
    FocusRing { shown: root.current; corner: Theme.rSmall; gap: -4 }
}
