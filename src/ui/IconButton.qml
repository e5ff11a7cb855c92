import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// A symbol to press. Its help text is its name for those who do not see the symbol.
Button {
    id: root

    required property string symbol
    required property string help
    property string description
    property real symbolSize: Theme.symbolRow
    property int side: Theme.iconButton
    property bool round: false
    property bool filled: false

    implicitWidth: side
    implicitHeight: side
    padding: 0
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    focusPolicy: Qt.TabFocus

    Accessible.role: Accessible.Button
    Accessible.name: help
    Accessible.description: description
    Accessible.onPressAction: if (root.enabled) root.clicked()
    Keys.onReturnPressed: if (root.enabled) root.clicked()
    Keys.onEnterPressed: if (root.enabled) root.clicked()

    background: Rectangle {
        radius: root.round ? height / 2 : Theme.rField
        color: root.pressed ? Theme.press : root.filled ? (root.hovered ? Theme.fillHover : Theme.fill)
            : root.hovered ? Theme.hover : Theme.clear
        FocusRing { shown: root.visualFocus; corner: parent.radius }
    }
    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: root.symbol
            size: root.symbolSize
            ink: root.hovered || root.pressed ? Theme.text1 : Theme.text2
        }
    }
    // Loaders take no bound components yet.
    // qmllint disable unqualified
    Loader { // a pop-up is large, and most are never seen
        anchors.fill: parent
        active: root.hovered
        sourceComponent: HelpTip {
            wanted: root.hovered && !root.pressed
            text: root.help
        }
    }
    // qmllint enable unqualified
}
