import QtQuick
import Murmeli.Ui

// The ring around the control that has the keyboard. Put it inside the control.
Rectangle {
    id: root

    required property Item control
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

    // Controls know by themselves whether focus came from the keyboard; plain items do not.
    readonly property bool shown: control.visualFocus ?? control.activeFocus

    Behavior on opacity { NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic } }
}
