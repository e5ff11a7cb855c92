import QtQuick

// The fill of what a view wants pressed first.
Gradient {
    id: root

    property bool hovered: false
    property bool pressed: false

    orientation: Gradient.Horizontal
    GradientStop {
        position: 0
        color: root.pressed ? Theme.primaryPressedFrom : root.hovered ? Theme.primaryHoverFrom : Theme.primaryFrom
    }
    GradientStop {
        position: 1
        color: root.pressed ? Theme.primaryPressedTo : root.hovered ? Theme.primaryHoverTo : Theme.primaryTo
    }
}
