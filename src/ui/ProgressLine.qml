import QtQuick
import Murmeli.Ui

// How much is done, from 0 to 1.
Rectangle {
    id: root

    required property real value
    property color from: Theme.violet
    property color to: Theme.blue

    implicitHeight: 5
    radius: height / 2
    color: Theme.track
    Accessible.role: Accessible.ProgressBar

    Rectangle {
        width: root.value > 0 ? Math.max(height, parent.width * Math.min(1, root.value)) : 0
        height: parent.height
        radius: parent.radius
        visible: root.value > 0
        gradient: Gradient {
            orientation: Gradient.Horizontal
            GradientStop { position: 0; color: root.from }
            GradientStop { position: 1; color: root.to }
        }
        Behavior on width { NumberAnimation { duration: Theme.progress; easing.type: Easing.OutCubic } }
    }
}
