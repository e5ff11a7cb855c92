import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// A switch. It shows what `on` says; a press only asks for a change.
CheckBox {
    id: root

    required property bool on
    required property string name
    property string description

    signal chosen(bool on)

    implicitWidth: 38
    implicitHeight: 22
    padding: 0
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    checked: on
    nextCheckState: () => checkState
    onClicked: chosen(!on)

    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    Accessible.description: description
    Accessible.checkable: true
    Accessible.checked: checked
    Accessible.onPressAction: if (root.enabled) root.clicked()
    Accessible.onToggleAction: if (root.enabled) root.clicked()
    Keys.onReturnPressed: if (root.enabled) root.clicked()
    Keys.onEnterPressed: if (root.enabled) root.clicked()

    indicator: null
    contentItem: null
    background: Rectangle {
        radius: height / 2
        color: root.on ? Theme.violet : Theme.track
        border.width: root.on ? 0 : Theme.hair
        border.color: Theme.line
        Behavior on color { ColorAnimation { duration: Theme.quick } }
        Rectangle {
            x: root.on ? parent.width - width - 2 : 2
            y: 2
            width: 18
            height: 18
            radius: 9
            color: Theme.white
            opacity: root.on ? 1 : 0.92
            Behavior on x { enabled: Theme.motion; NumberAnimation { duration: Theme.spring; easing.type: Easing.OutBack; easing.overshoot: Theme.springOvershoot } }
        }
        FocusRing { shown: root.visualFocus; corner: parent.radius }
    }
}
