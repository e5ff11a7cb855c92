import QtQuick
import Murmeli.Ui

// Text in one of Theme's styles that can be selected and copied. Always plain, and as many lines as it needs.
TextEdit {
    id: root

    property var type: Theme.body
    property var menu: (x, y) => EditMenus.open(root, x, y)
    property bool held: false // what is selected, while its menu is open

    readOnly: true
    selectByMouse: true
    activeFocusOnPress: true
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    color: Theme.text1
    selectionColor: Theme.alpha(Theme.violet, 0.35)
    selectedTextColor: color
    font.family: Theme.family
    font.pointSize: root.type.size * Look.pointsPerPixel
    font.weight: root.type.weight
    font.letterSpacing: root.type.tracking
    font.hintingPreference: Font.PreferNoHinting
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.readOnly: true
    Accessible.ignored: !visible || text.length === 0
    persistentSelection: true
    onActiveFocusChanged: if (!activeFocus && !held) deselect()

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: point => root.menu(point.position.x, point.position.y)
    }

    LineHeight {
        document: root.textDocument
        pixels: root.type.line
    }
}
