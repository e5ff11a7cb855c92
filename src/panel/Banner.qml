import QtQuick
import Murmeli.Notices
import Murmeli.Panel
import Murmeli.Ui

// A notice at the top of the panel. It grows into its place and fades in.
Item {
    id: root

    required property bool shown
    required property color accent
    required property color ink
    required property string symbol
    required property string title
    property string body
    property bool closable: false
    property string closeHelp
    property alias action: actionSlot.data
    property list<noticeAction> actions // below the text
    readonly property bool prominent: body.length > 0

    signal dismissed()
    signal acted(int action)

    property real unfolded: shown ? 1 : 0

    implicitHeight: (card.implicitHeight + Theme.padPanel) * Theme.unfolded(unfolded)
    visible: unfolded > 0
    opacity: unfolded
    clip: unfolded < 1

    Behavior on unfolded { NumberAnimation { duration: Theme.base; easing.type: Easing.OutCubic } }

    Accessible.role: Accessible.AlertMessage
    Accessible.name: body.length > 0 ? title + (/[.!?…]$/.test(title) ? " " : ". ") + body : title
    Accessible.ignored: !shown

    Rectangle {
        id: card
        anchors { left: parent.left; right: parent.right; top: parent.top }
        anchors.topMargin: Theme.padPanel
        anchors.leftMargin: Theme.padPanel
        anchors.rightMargin: Theme.padPanel
        implicitHeight: Math.max(glyph.height, texts.implicitHeight) + 22
        radius: Theme.rCard
        color: Theme.tintBanner(root.accent)
        border.width: Theme.hair
        border.color: Theme.tintLine(root.accent)

        Symbol {
            id: glyph
            anchors.left: parent.left
            anchors.leftMargin: Theme.padPanel
            y: root.closable || buttons.visible ? texts.y : (parent.height - height) / 2
            size: Theme.symbolBanner
            name: root.symbol
            ink: root.ink
        }
        Column {
            id: texts
            anchors.left: glyph.right
            anchors.leftMargin: Theme.gapGroup
            anchors.right: parent.right
            anchors.rightMargin: root.closable ? 30 : actionSlot.width + (actionSlot.width > 0 ? 20 : Theme.padPanel)
            anchors.verticalCenter: parent.verticalCenter
            spacing: 3
            Label {
                width: parent.width
                type: root.prominent ? Theme.labelStrong : Theme.label
                wrapMode: Text.Wrap
                maximumLineCount: 3
                elide: Text.ElideRight
                text: root.title
                Accessible.ignored: true
            }
            Label {
                width: parent.width
                visible: root.prominent
                type: Theme.caption
                color: Theme.text2
                wrapMode: Text.Wrap
                maximumLineCount: 5
                elide: Text.ElideRight
                text: root.body
                Accessible.ignored: true
            }
            NoticeButtons {
                id: buttons
                width: parent.width
                topPadding: 6
                visible: root.actions.length > 0
                actions: root.actions
                onActed: action => root.acted(action)
            }
        }
        Row {
            id: actionSlot
            anchors.right: parent.right
            anchors.rightMargin: Theme.gapGroup
            anchors.verticalCenter: parent.verticalCenter
        }
        IconButton {
            anchors { right: parent.right; top: parent.top }
            anchors.margins: 6
            visible: root.closable
            symbol: "xmark"
            symbolSize: Theme.symbolSmall
            side: Theme.buttonSmall
            round: true
            help: root.closeHelp
            onClicked: root.dismissed()
        }
    }
}
