import QtQuick
import Murmeli.Ui

// In place of a list that holds nothing.
Column {
    id: root

    required property string text
    property string symbol: "calendar.badge.clock"

    spacing: Theme.padCard
    Accessible.role: Accessible.StatusBar
    Accessible.name: text

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        width: 64
        height: 64
        radius: 20
        color: Theme.bgCard
        border.width: Theme.hair
        border.color: Theme.line
        Symbol {
            anchors.centerIn: parent
            size: 30
            name: root.symbol
            ink: Theme.text2
        }
    }
    Label {
        anchors.horizontalCenter: parent.horizontalCenter
        color: Theme.text2
        text: root.text
        Accessible.ignored: true
    }
}
