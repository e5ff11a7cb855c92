import QtQuick
import Murmeli.Ui

// A framed notice inside of a window.
Rectangle {
    id: root

    required property color accent
    property color ink
    property string symbol
    property string title
    property string body
    default property alias extra: column.data

    implicitHeight: column.implicitHeight + 26
    radius: Theme.rCard
    color: Theme.tintSoft(accent)
    border.width: Theme.hair
    border.color: Theme.tintLine(accent)

    Accessible.role: Accessible.AlertMessage
    Accessible.name: title.length > 0 ? title + ". " + body : body
    Accessible.ignored: !visible

    Symbol {
        id: glyph
        x: Theme.padCard
        y: column.y + 1
        visible: root.symbol.length > 0
        size: Theme.symbolBanner
        name: root.symbol
        ink: root.ink
    }
    Column {
        id: column
        anchors { left: parent.left; right: parent.right; verticalCenter: parent.verticalCenter }
        anchors.leftMargin: root.symbol.length > 0 ? glyph.x + glyph.size + Theme.padPanel : Theme.padCard
        anchors.rightMargin: Theme.padCard
        spacing: 3

        Label {
            width: parent.width
            visible: root.title.length > 0
            type: Theme.labelStrong
            wrapMode: Text.Wrap
            text: root.title
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            type: Theme.subLoose
            color: Theme.text2
            wrapMode: Text.Wrap
            text: root.body
            Accessible.ignored: true
        }
    }
}
