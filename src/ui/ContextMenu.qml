import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// A few commands that open where they are asked for.
Menu {
    id: root

    padding: 6
    margins: Theme.gapRow
    delegate: ContextMenuItem { }
    background: Rectangle {
        implicitWidth: 200
        radius: Theme.rCard
        color: Theme.bgPop
        border.width: Theme.hair
        border.color: Theme.popEdge
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
    exit: Transition { NumberAnimation { property: "opacity"; to: 0; duration: Theme.quick } }
}
