import QtQuick
import Murmeli.Ui

// One line of text with the place marked where a search has found something.
Label {
    id: root

    property point hit: Qt.point(-1, 0) // its start and length; a start of -1: nothing to mark

    Rectangle {
        z: -1
        visible: root.hit.x >= 0 && width > 0
        x: before.advanceWidth - 1
        y: 1
        width: Math.min(found.advanceWidth + 2, root.width - x)
        height: root.height - 2
        radius: Theme.rLine
        color: Theme.mark
    }
    TextMetrics {
        id: before
        font: root.font
        text: root.hit.x > 0 ? root.text.slice(0, root.hit.x) : ""
    }
    TextMetrics {
        id: found
        font: root.font
        text: root.hit.x >= 0 ? root.text.slice(root.hit.x, root.hit.x + root.hit.y) : ""
    }
}
