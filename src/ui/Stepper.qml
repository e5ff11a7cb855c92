import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// A whole number between two bounds. It shows `value`; a press only asks for a change.
FocusScope {
    id: root

    required property int value
    required property int least
    required property int most
    required property string text // the value with its unit
    required property string name
    property string description

    signal chosen(int value)

    function step(by: int): void {
        const next = Math.max(root.least, Math.min(root.most, root.value + by));
        if (next !== root.value) root.chosen(next);
    }

    implicitWidth: figure.width + 10 + buttons.width
    implicitHeight: Theme.grown(28)

    Label {
        id: figure
        anchors.verticalCenter: parent.verticalCenter
        width: Math.max(44, implicitWidth)
        horizontalAlignment: Text.AlignRight
        text: root.text
        Accessible.ignored: true
    }
    Rectangle {
        id: buttons
        anchors { right: parent.right; verticalCenter: parent.verticalCenter }
        width: Theme.grown(61)
        height: Theme.grown(28)
        radius: Theme.rField
        color: Theme.fill
        focus: true
        activeFocusOnTab: true
        Accessible.role: Accessible.SpinBox
        Accessible.name: root.name + ", " + root.text
        Accessible.description: root.description
        Accessible.focusable: true
        Accessible.onIncreaseAction: root.step(1)
        Accessible.onDecreaseAction: root.step(-1)
        Keys.onUpPressed: root.step(1)
        Keys.onRightPressed: root.step(1)
        Keys.onDownPressed: root.step(-1)
        Keys.onLeftPressed: root.step(-1)

        StepButton {
            symbol: "minus"
            name: root.lessName
            enabled: root.value > root.least
            onClicked: root.step(-1)
        }
        Rectangle {
            x: 30
            width: Theme.hair
            height: parent.height
            color: Theme.lineField
        }
        StepButton {
            x: 31
            symbol: "plus"
            name: root.moreName
            enabled: root.value < root.most
            onClicked: root.step(1)
        }
        FocusRing { shown: buttons.activeFocus; corner: parent.radius }
    }

    required property string lessName
    required property string moreName

    component StepButton: AbstractButton {
        id: button
        required property string symbol
        required property string name
        width: Theme.grown(30)
        height: Theme.grown(28)
        focusPolicy: Qt.NoFocus // the arrows step
        autoRepeat: true
        hoverEnabled: true
        Accessible.role: Accessible.Button
        Accessible.name: name
        Accessible.onPressAction: if (enabled) clicked()
        background: Rectangle {
            radius: Theme.rField
            color: button.pressed ? Theme.press : button.hovered ? Theme.hover : Theme.clear
        }
        contentItem: Item {
            Symbol {
                anchors.centerIn: parent
                size: Theme.symbolSmall
                name: button.symbol
                ink: button.enabled ? Theme.text1 : Theme.text4
            }
        }
    }
}
