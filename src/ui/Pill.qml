import QtQuick
import Murmeli.Ui

// A word about what it stands beside.
Rectangle {
    id: root

    required property string text
    property string symbol
    property string spokenName: text
    property color ink: Theme.inkViolet
    property var type: Theme.chip

    implicitWidth: content.width + 16
    implicitHeight: Theme.grown(20)
    radius: height / 2
    color: Theme.tint(Theme.violet)
    Accessible.role: Accessible.StaticText
    Accessible.name: spokenName

    Row {
        id: content
        anchors.centerIn: parent
        spacing: 5
        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.symbol.length > 0
            size: 11
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
