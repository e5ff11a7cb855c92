import QtQuick
import Murmeli.Ui

// What a pane that lies over another one is, what can be done with all of it, and how to leave it.
Item {
    id: root

    required property string title
    required property string closeHelp
    property string line // under the title
    default property alias tools: row.data

    signal closed()

    function focusFirst(): void {
        close.forceActiveFocus(Qt.OtherFocusReason);
    }

    readonly property int above: Math.max(20, 10 + Theme.chromeInset)

    implicitHeight: above + texts.height + 17

    Column {
        id: texts
        anchors { left: parent.left; leftMargin: Theme.padMain; right: row.left; rightMargin: Theme.padPanel }
        y: root.above
        spacing: 2
        Label {
            width: parent.width
            type: Theme.title
            elide: Text.ElideRight
            text: root.title
            Accessible.role: Accessible.Heading
        }
        Label {
            width: parent.width
            type: Theme.sub
            visible: text.length > 0
            color: Theme.text3
            elide: Text.ElideRight
            text: root.line
        }
    }
    Row {
        id: row
        anchors { right: close.left; rightMargin: Theme.gapRow; verticalCenter: close.verticalCenter }
        spacing: Theme.gapRow
    }
    IconButton {
        id: close
        anchors { right: parent.right; rightMargin: 24 }
        y: root.above + 12
        side: Theme.buttonHeight
        round: true
        filled: true
        symbol: "xmark"
        symbolSize: Theme.symbolSmall
        help: root.closeHelp
        onClicked: root.closed()
    }
    Rectangle {
        anchors.bottom: parent.bottom
        width: parent.width
        height: Theme.hair
        color: Theme.line
    }
}
