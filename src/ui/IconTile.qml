import QtQuick
import Murmeli.Ui

// What a row is about, on a small square.
Rectangle {
    property alias symbol: glyph.name

    implicitWidth: Theme.iconTile
    implicitHeight: Theme.iconTile
    radius: Theme.rSmall
    color: Theme.fill

    Symbol {
        id: glyph
        anchors.centerIn: parent
        size: Theme.symbolText
        ink: Theme.text2
    }
}
