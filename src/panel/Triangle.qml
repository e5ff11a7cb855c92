import QtQuick
import QtQuick.Shapes
import Murmeli.Panel
import Murmeli.Ui

// The arrow on the panel's top edge that points at the status item.
Shape {
    id: root

    width: Theme.arrowWidth
    height: Theme.arrowHeight

    ShapePath {
        strokeWidth: 0
        strokeColor: Theme.clear
        fillColor: Theme.bgPanel
        PathSvg { path: "M0 10.5C4.6 10 6.8 7.2 8.7 3.6 9.7 1.6 10.2.8 11 .8s1.3.8 2.3 2.8C15.2 7.2 17.4 10 22 10.5Z" }
    }
    ShapePath {
        strokeWidth: 1
        strokeColor: Theme.lineField
        fillColor: Theme.clear
        PathSvg { path: "M0 9.5C4.6 9.5 6.8 7 8.7 3.4 9.7 1.4 10.2.6 11 .6s1.3.8 2.3 2.8C15.2 7 17.4 9.5 22 9.5" }
    }
}
