import QtQuick
import QtQuick.Shapes
import Murmeli.Ui

// A turning arc: something is at work. Stands still where the desktop asks for less motion.
Item {
    id: root

    property color ink: Theme.inkCyan
    property real size: 14

    implicitWidth: size
    implicitHeight: size

    Shape {
        id: arc
        anchors.fill: parent
        ShapePath {
            strokeColor: root.ink
            strokeWidth: 1.75
            fillColor: Theme.clear
            capStyle: ShapePath.RoundCap
            PathAngleArc {
                centerX: root.size / 2
                centerY: root.size / 2
                radiusX: root.size / 2 - 1
                radiusY: root.size / 2 - 1
                startAngle: 0
                sweepAngle: 280
            }
        }
        RotationAnimator on rotation {
            from: 0
            to: 360
            duration: Theme.spin
            loops: Animation.Infinite
            running: root.visible && root.Window.visibility !== Window.Hidden && Theme.motion
        }
    }
}
