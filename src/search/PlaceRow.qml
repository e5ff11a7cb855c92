import QtQuick
import Murmeli.Localisation
import Murmeli.Search
import Murmeli.Ui

// A sentence in which something was found: what it is or when it was said, who said it, and its words.
Item {
    id: root

    required property SearchModel search
    required property foundPlace place
    property bool current: false // the keyboard is here

    signal opened()

    implicitHeight: Math.max(said.height, Theme.grown(20)) + 10
    Accessible.role: Accessible.ListItem
    Accessible.name: root.search.spoken(root.place, L.language)
    Accessible.focusable: true
    Accessible.focused: root.current
    Accessible.onPressAction: root.opened()

    Rectangle {
        anchors { fill: parent; leftMargin: -8 }
        radius: Theme.rSmall
        color: area.pressed ? Theme.press : area.containsMouse ? Theme.hover : Theme.clear
        FocusRing { shown: root.current; corner: parent.radius; gap: -Theme.focusWidth }
    }
    MouseArea {
        id: area
        anchors.fill: parent
        hoverEnabled: true
        Accessible.ignored: true
        onClicked: root.opened()
    }
    Label {
        id: kind
        y: 5 + (said.firstLine - height) / 2
        width: Theme.grown(74)
        visible: text.length > 0
        type: Theme.caption
        color: Theme.text3
        elide: Text.ElideRight
        text: root.place.kind.length > 0 ? L.t(root.place.kind) : ""
        Accessible.ignored: true
    }
    Rectangle {
        id: chip
        y: 5 + (said.firstLine - height) / 2
        visible: !kind.visible
        width: stamp.width + 16
        height: Theme.grown(20)
        radius: height / 2
        color: Theme.tint(Theme.violet)
        Label {
            id: stamp
            anchors.centerIn: parent
            type: Theme.chip
            color: Theme.inkViolet
            text: "[" + root.place.stamp + "]"
            Accessible.ignored: true
        }
    }
    Label {
        id: said

        readonly property real firstLine: Theme.sub.line

        anchors { left: parent.left; right: parent.right; rightMargin: 12; top: parent.top; topMargin: 3 } // rich text stands lower than plain
        anchors.leftMargin: (kind.visible ? kind.width : chip.width) + 9
        type: Theme.sub
        color: Theme.text2
        wrapMode: Text.Wrap
        maximumLineCount: 2
        elide: Text.ElideRight
        textFormat: Text.RichText
        text: root.search.marked(root.place, Theme.mark, Theme.text1)
        Accessible.ignored: true
    }
}
