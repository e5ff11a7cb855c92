import QtQuick
import Murmeli.Ui

// A field to search in; Escape and the cross clear it.
Field {
    id: root

    property string clearName

    implicitWidth: Theme.searchWidth
    leftPadding: 35
    rightPadding: text.length > 0 ? 34 : 11
    Keys.onEscapePressed: event => {
        event.accepted = text.length > 0;
        clear();
    }

    Symbol {
        x: 11
        anchors.verticalCenter: parent.verticalCenter
        size: Theme.symbolText
        name: "magnifyingglass"
        ink: Theme.text3
    }
    IconButton {
        anchors { right: parent.right; rightMargin: 3; verticalCenter: parent.verticalCenter }
        visible: root.text.length > 0
        symbol: "xmark"
        symbolSize: Theme.symbolSmall
        side: Theme.buttonSmall
        round: true
        focusPolicy: Qt.NoFocus
        help: root.clearName
        onClicked: {
            root.clear();
            root.forceActiveFocus();
        }
    }
}
