import QtQuick
import Murmeli.Localisation
import Murmeli.Ui

// A rule or a term of the glossary.
Rectangle {
    id: root

    required property string heard
    required property string correct
    property bool current: false

    signal removed()

    implicitHeight: Theme.grown(42)
    color: area.hovered ? Theme.hover : Theme.clear

    Accessible.role: Accessible.ListItem
    Accessible.name: heard.length > 0 ? L.t("assistant.row.rule", heard) + " " + correct : correct
    Accessible.focusable: true
    Accessible.focused: current

    HoverHandler { id: area }
    Label {
        id: left
        anchors.verticalCenter: parent.verticalCenter
        x: 16
        width: root.heard.length > 0 ? 190 : root.width - 72
        type: root.heard.length > 0 ? Theme.rowQuiet : Theme.row
        color: root.heard.length > 0 ? Theme.text2 : Theme.text1
        text: root.heard.length > 0 ? root.heard : root.correct
        Accessible.ignored: true
    }
    Symbol {
        id: arrows
        anchors.verticalCenter: parent.verticalCenter
        x: 220
        visible: root.heard.length > 0
        size: 14
        name: "arrow.left.arrow.right"
        ink: Theme.text3
    }
    Label {
        anchors { left: arrows.right; leftMargin: 20; right: remove.left; verticalCenter: parent.verticalCenter }
        visible: root.heard.length > 0
        type: Theme.row
        text: root.correct
        Accessible.ignored: true
    }
    IconButton {
        id: remove
        anchors { right: parent.right; rightMargin: 6; verticalCenter: parent.verticalCenter }
        symbol: "xmark"
        symbolSize: Theme.symbolSmall
        round: true
        focusPolicy: Qt.NoFocus
        opacity: area.hovered || root.current ? 1 : 0.55
        help: L.t("assistant.remove", root.heard.length > 0 ? root.heard : root.correct)
        onClicked: root.removed()
    }
    FocusRing {
        shown: root.current
        corner: Theme.rSmall
        gap: -Theme.focusWidth * 2
    }
}
