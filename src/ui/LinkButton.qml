import QtQuick
import QtQuick.Controls.Basic
import Murmeli.Ui

// A symbol (or none) and a word to press, without a shape of its own.
Button {
    id: root

    required property string symbol
    property string spokenName: text
    property color ink: Theme.inkViolet
    property var type: Theme.link

    implicitHeight: Theme.buttonSmall
    leftPadding: Theme.gapSmall
    rightPadding: Theme.gapSmall
    topPadding: 0
    bottomPadding: 0
    opacity: enabled ? 1 : Theme.disabledOpacity
    hoverEnabled: true
    focusPolicy: Qt.TabFocus

    Accessible.role: Accessible.Button
    Accessible.name: spokenName
    Accessible.onPressAction: if (root.enabled) root.clicked()
    Keys.onReturnPressed: if (root.enabled) root.clicked()
    Keys.onEnterPressed: if (root.enabled) root.clicked()

    background: Rectangle {
        radius: Theme.rField
        color: root.pressed ? Theme.press : root.hovered ? Theme.hover : Theme.clear
        FocusRing { shown: root.visualFocus; corner: parent.radius }
    }
    contentItem: Row {
        spacing: 5
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol.length > 0
            size: Theme.symbolText
            name: root.symbol
            ink: root.ink
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            type: root.type
            color: root.ink
            text: root.text
            Accessible.ignored: true
        }
    }
}
