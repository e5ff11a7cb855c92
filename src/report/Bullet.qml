import QtQuick
import Murmeli.Ui

// A line of a bulleted list.
Item {
    id: root

    required property string text
    property color ink: Theme.text4

    implicitHeight: line.height

    Rectangle {
        x: 2
        y: 9
        width: 4
        height: 4
        radius: 2
        color: root.ink
    }
    SelectableText {
        id: line
        x: 16
        width: parent.width - x
        type: Theme.running
        text: root.text
    }
}
