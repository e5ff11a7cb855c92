pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// Two or three choices side by side, one of which holds. One stop for the keyboard; arrows choose.
FocusScope {
    id: root

    required property var options // of { value, text }
    required property string current
    property string name
    readonly property bool visualFocus: activeFocus && keyboard
    property bool keyboard: false

    signal chosen(string value)

    function step(by: int): void {
        const at = options.findIndex(option => option.value === current) + by;
        if (at >= 0 && at < options.length) chosen(options[at].value);
    }

    implicitHeight: Theme.buttonHeight
    opacity: enabled ? 1 : Theme.disabledOpacity
    activeFocusOnTab: true
    Keys.onLeftPressed: step(-1)
    Keys.onRightPressed: step(1)
    Keys.onUpPressed: step(-1)
    Keys.onDownPressed: step(1)
    onActiveFocusChanged: if (activeFocus) keyboard = true

    Accessible.role: Accessible.Grouping
    // With what holds, since the arrows change it while the keyboard stays here.
    Accessible.name: {
        const holding = options.find(option => option.value === current);
        return holding ? name + ", " + holding.text : name;
    }

    Rectangle {
        anchors.fill: parent
        radius: Theme.rField
        color: Theme.fill
        FocusRing { shown: root.visualFocus; corner: parent.radius }
    }
    Row {
        anchors.fill: parent
        anchors.margins: 2
        Repeater {
            model: root.options
            delegate: RadioButton {
                id: choice

                required property var modelData
                readonly property bool holds: modelData.value === root.current

                width: parent.width / root.options.length
                height: parent.height
                padding: 0
                text: modelData.text
                checked: holds
                autoExclusive: false
                hoverEnabled: true
                focusPolicy: Qt.NoFocus
                onClicked: {
                    root.keyboard = false;
                    root.chosen(modelData.value);
                    checked = Qt.binding(() => choice.holds);
                }

                Accessible.role: Accessible.RadioButton
                Accessible.name: text
                Accessible.checkable: true
                Accessible.checked: holds
                Accessible.onPressAction: if (root.enabled) root.chosen(modelData.value)
                Accessible.onToggleAction: if (root.enabled) root.chosen(modelData.value)

                indicator: null
                background: Rectangle {
                    radius: 7
                    color: choice.holds ? Theme.segThumb : Theme.clear
                    border.width: choice.holds ? Theme.hair : 0
                    border.color: Theme.segEdge
                }
                contentItem: Item {
                    Label {
                        anchors.centerIn: parent
                        type: Theme.button
                        text: choice.text
                        color: choice.holds || choice.hovered ? Theme.text1 : Theme.text2
                        Accessible.ignored: true
                    }
                }
            }
        }
    }
}
