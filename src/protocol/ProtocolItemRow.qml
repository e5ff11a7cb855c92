import QtQuick
import Murmeli.Localisation
import Murmeli.Ui

// An item of the protocol; the first one of a section stands beside its title.
Item {
    id: root

    required property string text
    required property string titleKey
    required property bool last
    required property string before // what stood here before a correction
    required property bool corrected
    property bool lit: false // somebody has come to look at it
    property bool current: false // the keyboard is here
    readonly property bool first: titleKey.length > 0

    signal taken() // by a press on its text
    signal menuAsked(point at, string selected)

    implicitHeight: item.y + item.height + (last ? 16 : Theme.gapRow)

    Rectangle {
        width: parent.width
        height: Theme.hair
        visible: root.first
        color: Theme.line
    }
    Label {
        y: item.y
        width: Theme.grown(140)
        visible: root.first
        type: Theme.labelStrong
        wrapMode: Text.Wrap
        text: root.first ? L.t(root.titleKey) : ""
        Accessible.role: Accessible.Heading
    }
    Rectangle {
        id: ground
        anchors.fill: item
        anchors.leftMargin: -24
        anchors.rightMargin: -6
        anchors.topMargin: -6
        anchors.bottomMargin: -6
        radius: Theme.rSmall
        color: root.lit && !root.corrected ? Theme.mark : Theme.alpha(Theme.green, 0.10)
        opacity: glow
        property real glow
        SequentialAnimation on glow {
            running: root.corrected || root.lit
            NumberAnimation { from: 1; to: 1; duration: Theme.swap }
            NumberAnimation { to: 0; duration: Theme.afterglow; easing.type: Easing.InQuad }
        }
    }
    Rectangle {
        x: item.x - 17
        y: item.y + (Theme.body.line - height) / 2
        width: 5
        height: 5
        radius: 2.5
        color: Theme.text4
    }
    SelectableText {
        id: item
        x: Theme.grown(176)
        y: root.first ? 18 : 0
        width: parent.width - x
        text: root.text
        onActiveFocusChanged: if (activeFocus) root.taken()
        menu: (x, y) => root.menuAsked(item.mapToItem(root, x, y), item.selectedText)
        Accessible.role: Accessible.ListItem
        Accessible.description: root.before.length > 0 ? L.t("detail.before", root.before) : ""
        Accessible.focusable: true
        Accessible.focused: root.current

        HoverHandler { id: over }
        HelpTip {
            wanted: over.hovered && root.before.length > 0
            text: root.before.length > 0 ? L.t("detail.before", root.before) : ""
        }
    }
    FocusRing { anchors.fill: ground; shown: root.current; corner: Theme.rSmall }
}
