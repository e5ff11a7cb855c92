import QtQuick
import Murmeli.Ui

// The ring around the control that has the keyboard. Put it inside the control.
Rectangle {
    id: root

    required property bool shown
    property real corner: Theme.rField
    property int gap: Theme.focusGap

    anchors.fill: parent
    anchors.margins: -(gap + Theme.focusWidth)
    radius: corner + gap + Theme.focusWidth
    color: Theme.clear
    border.width: Theme.focusWidth
    border.color: Theme.violet
    opacity: shown ? 1 : 0
    visible: opacity > 0

    Behavior on opacity { NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic } }
}
