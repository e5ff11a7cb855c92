import QtQuick
import Murmeli.Receipts
import Murmeli.Ui

// Something that has left this computer: what, when, where to, and what became of it. Or the month above.
Item {
    id: root

    required property sentRow row
    property bool current: false // the keyboard is here

    implicitHeight: row.heading ? heading.height : Math.max(Theme.grown(60), texts.height + 20)
    Accessible.role: row.heading ? Accessible.Heading : Accessible.ListItem
    Accessible.name: row.spoken
    Accessible.focusable: true
    Accessible.focused: current

    Item {
        id: heading
        width: parent.width
        height: month.height
        visible: root.row.heading
        Label {
            id: month
            leftPadding: Theme.gapSmall
            topPadding: 18
            bottomPadding: 8
            type: Theme.heading
            color: Theme.text2
            text: root.row.title
            Accessible.ignored: true
        }
        Label {
            anchors { right: parent.right; baseline: month.baseline }
            type: Theme.caption
            color: Theme.text3
            text: root.row.line
            Accessible.ignored: true
        }
    }
    Item { // the part of the card that lies under this row
        anchors.fill: parent
        visible: !root.row.heading
        clip: true
        Rectangle {
            readonly property int above: root.row.first ? 0 : 20
            y: -above
            width: parent.width
            height: parent.height + above + (root.row.last ? 0 : 20)
            radius: Theme.rCard
            color: Theme.bgCard
            border.width: Theme.hair
            border.color: Theme.line
        }
        Rectangle {
            width: parent.width
            height: Theme.hair
            visible: !root.row.first
            color: Theme.line
        }
        IconTile {
            id: tile
            anchors { left: parent.left; leftMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
            symbol: root.row.symbol
        }
        Column {
            id: texts
            anchors { left: tile.right; leftMargin: Theme.padPanel; right: figures.left; rightMargin: Theme.padPanel; verticalCenter: parent.verticalCenter }
            spacing: 1
            Label {
                width: parent.width
                type: Theme.label
                text: root.row.title
                Accessible.ignored: true
            }
            Label {
                width: parent.width
                type: Theme.sub
                color: Theme.text2
                text: root.row.line
                Accessible.ignored: true
            }
        }
        Column {
            id: figures
            anchors { right: parent.right; rightMargin: Theme.padCard; verticalCenter: parent.verticalCenter }
            Label {
                anchors.right: parent.right
                type: Theme.sub
                color: Theme.text2
                text: root.row.size
                Accessible.ignored: true
            }
            Label {
                anchors.right: parent.right
                visible: text.length > 0
                type: Theme.caption
                color: root.row.good ? Theme.inkGreen : Theme.inkRed
                text: root.row.result
                Accessible.ignored: true
            }
        }
    }
    FocusRing { shown: root.current; corner: Theme.rSmall; gap: -4 }
}
