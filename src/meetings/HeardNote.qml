import QtQuick
import Murmeli.Localisation
import Murmeli.Ui

// What is wrong with a recording's sound; nothing when nothing is.
Row {
    id: root

    required property string key
    property bool alreadySaid: false // by what it stands in
    readonly property string text: key ? L.t(key) : ""

    spacing: Theme.gapSmall
    visible: key.length > 0

    Symbol {
        y: (Theme.sub.line - height) / 2
        size: Theme.symbolSmall
        name: "mic.fill"
        ink: Theme.inkPink
    }
    Label {
        width: Math.min(implicitWidth, root.width - x)
        type: Theme.sub
        color: Theme.inkPink
        text: root.text
        Accessible.ignored: root.alreadySaid
    }
}
